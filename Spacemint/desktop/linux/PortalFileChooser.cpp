#include "Spacemint/desktop/linux/PortalFileChooser.h"

#include "Spacemint/desktop/linux/DBusCall.h"
#include "core/base/Log.h"

#include <QStringList>
#include <QUrl>

#include <utility>

namespace spacemint {

namespace {

const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString object = QStringLiteral("/org/freedesktop/portal/desktop");
const QString chooser = QStringLiteral("org.freedesktop.portal.FileChooser");
const QString request = QStringLiteral("org.freedesktop.portal.Request");
const QString response = QStringLiteral("Response");

}  // namespace

// The portal names the object of the dialog after the caller and a token, so that the caller can listen to
// the object before the dialog is open.
void PortalFileChooser::choose(const std::string& title, Opener::Chosen chosen,
                               std::function<void()> failed) {
  unfollow();
  chosen_ = std::move(chosen);
  const QString token = QStringLiteral("spacemint%1").arg(++dialogs_);
  QString caller = bus_.baseService().mid(1);
  follow(object + QStringLiteral("/request/") + caller.replace(u'.', u'_') + u'/' + token);
  const QString noWindow;
  QDBusMessage call = QDBusMessage::createMethodCall(service, object, chooser, QStringLiteral("OpenFile"));
  call << noWindow << QString::fromStdString(title) << QVariantMap{{QStringLiteral("handle_token"), token}};
  callAsync(bus_, call, this, [this, failed = std::move(failed)](const QDBusMessage& reply) {
    if (reply.type() != QDBusMessage::ErrorMessage) return;
    log(LogLevel::info, "no dialog to choose a file: " + reply.errorMessage().toStdString());
    unfollow();
    failed();
  });
}

void PortalFileChooser::responded(uint code, const QVariantMap& results, const QDBusMessage& signal) {
  // The answer of an earlier dialog may still be under way.
  if (signal.path() != request_) return;
  unfollow();
  const Opener::Chosen chosen = std::exchange(chosen_, nullptr);
  const QUrl url{results.value(QStringLiteral("uris")).toStringList().value(0)};
  if (code == 0 && url.isLocalFile() && chosen) chosen(url.toLocalFile().toStdString());
}

void PortalFileChooser::follow(const QString& path) {
  request_ = path;
  bus_.connect(service, request_, request, response, this, SLOT(responded(uint, QVariantMap, QDBusMessage)));
}

void PortalFileChooser::unfollow() {
  if (request_.isEmpty()) return;
  bus_.disconnect(service, request_, request, response, this,
                  SLOT(responded(uint, QVariantMap, QDBusMessage)));
  request_.clear();
}

}  // namespace spacemint
