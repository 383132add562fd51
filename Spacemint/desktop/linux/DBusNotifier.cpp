#include "Spacemint/desktop/linux/DBusNotifier.h"

#include "Spacemint/desktop/linux/DBusCall.h"
#include "core/base/Log.h"
#include "core/base/Translation.h"

#include <QDBusMessage>
#include <QPointer>
#include <QVariantMap>

#include <utility>

namespace spacemint {

namespace {

const QString notifierName = QStringLiteral("org.freedesktop.Notifications");
const QString notifierPath = QStringLiteral("/org/freedesktop/Notifications");
const QString defaultAction = QStringLiteral("default");
const QString desktopEntry = QStringLiteral("app.spacemint.Spacemint");
// The service decides how long a notification stays.
constexpr int defaultTimeout = -1;

QDBusMessage method(const char* name) {
  return QDBusMessage::createMethodCall(notifierName, notifierPath, notifierName, QLatin1String(name));
}

QVariantMap hintsOf(const Notification& notification) {
  constexpr uchar normal = 1;
  constexpr uchar critical = 2;
  QVariantMap hints{
      {QStringLiteral("urgency"), QVariant::fromValue(notification.isCritical ? critical : normal)},
      {QStringLiteral("desktop-entry"), desktopEntry}};
  if (notification.hasSound) {
    hints.insert(QStringLiteral("sound-name"), QStringLiteral("message-new-instant"));
  } else {
    hints.insert(QStringLiteral("suppress-sound"), true);
  }
  return hints;
}

}  // namespace

DBusNotifier::DBusNotifier(const QDBusConnection& bus)
    : bus_(bus),
      watcher_(notifierName, bus, QDBusServiceWatcher::WatchForOwnerChange) {
  connect(&watcher_, &QDBusServiceWatcher::serviceOwnerChanged, this,
          [this](const QString&, const QString&, const QString& owner) { serviceChanged(!owner.isEmpty()); });
  bus_.connect(notifierName, notifierPath, notifierName, QStringLiteral("ActionInvoked"), this,
               SLOT(actionInvoked(uint, QString)));
  bus_.connect(notifierName, notifierPath, notifierName, QStringLiteral("NotificationClosed"), this,
               SLOT(notificationClosed(uint, uint)));
}

void DBusNotifier::show(const Notification& notification, QObject* context, Answer answer) {
  const Answer logged = [guard = QPointer{context}, answer = std::move(answer)](bool isAccepted) {
    if (!isAccepted) log(LogLevel::info, "no notification service accepted a notification");
    if (guard) answer(isAccepted);
  };
  if (readsMarkup_) return send(notification, logged);
  findOutAboutMarkup([this, notification, logged](bool isKnown) {
    if (!isKnown) return logged(false);
    send(notification, logged);
  });
}

// Until the answer is known each notification asks by itself. So they are sent in the order of the calls.
void DBusNotifier::findOutAboutMarkup(std::function<void(bool isKnown)> then) {
  callAsync(bus_, method("GetCapabilities"), this, [this, then = std::move(then)](const QDBusMessage& reply) {
    if (reply.type() != QDBusMessage::ReplyMessage) return then(false);
    readsMarkup_ = reply.arguments().value(0).toStringList().contains(QStringLiteral("body-markup"));
    then(true);
  });
}

void DBusNotifier::send(const Notification& notification, const Answer& answer) {
  constexpr uint replacesNone = 0;
  const QString body = QString::fromStdString(notification.body);
  QDBusMessage call = method("Notify");
  call << QStringLiteral("Spacemint") << replacesNone << desktopEntry
       << QString::fromStdString(notification.title)
       << (readsMarkup_.value_or(false) ? body.toHtmlEscaped() : body)
       << QStringList{defaultAction, QString::fromStdString(i18n("Open Spacemint"))} << hintsOf(notification)
       << defaultTimeout;
  callAsync(bus_, call, this, [this, answer](const QDBusMessage& reply) {
    const bool isAccepted = reply.type() == QDBusMessage::ReplyMessage;
    if (isAccepted) shown_.insert(reply.arguments().value(0).toUInt());
    answer(isAccepted);
  });
}

void DBusNotifier::askIfAllowed(QObject* context, Answer answer) {
  callAsync(bus_, method("GetServerInformation"), context,
            [answer = std::move(answer)](const QDBusMessage& reply) {
              answer(reply.type() == QDBusMessage::ReplyMessage);
            });
}

void DBusNotifier::actionInvoked(uint id, const QString& action) {
  if (action == defaultAction && shown_.contains(id)) Q_EMIT activated();
}

void DBusNotifier::notificationClosed(uint id, uint /*reason*/) {
  shown_.remove(id);
}

// The next service numbers its notifications from the beginning, and may read texts differently.
void DBusNotifier::serviceChanged(bool isThere) {
  shown_.clear();
  readsMarkup_.reset();
  log(LogLevel::info, isThere ? "a notification service appeared" : "the notification service is gone");
  if (isThere) Q_EMIT serviceAppeared();
}

}  // namespace spacemint
