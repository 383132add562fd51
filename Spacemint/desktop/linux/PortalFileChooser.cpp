#include "Spacemint/desktop/linux/PortalFileChooser.h"

#include "Spacemint/desktop/linux/DBusCall.h"
#include "core/base/Log.h"

#include <QDBusMessage>
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

void PortalFileChooser::responded(uint code, const QVariantMap& results) {
  unfollow();
  const Opener::Chosen chosen = std::exchange(chosen_, nullptr);
  const QUrl url{results.value(QStringLiteral("uris")).toStringList().value(0)};
  if (code == 0 && url.isLocalFile() && chosen) chosen(url.toLocalFile().toStdString());
}

// From whoever sends it: to follow the portal by its name, Qt would first have to ask for the name's owner,
// and could miss an answer meanwhile. The path has this program's name on the bus and the token in it.
void PortalFileChooser::follow(const QString& path) {
  request_ = path;
  bus_.connect({}, request_, request, response, this, SLOT(responded(uint, QVariantMap)));
}

void PortalFileChooser::unfollow() {
  if (request_.isEmpty()) return;
  bus_.disconnect({}, request_, request, response, this, SLOT(responded(uint, QVariantMap)));
  request_.clear();
}

}  // namespace spacemint
