#include "Spacemint/desktop/linux/DBusNotifier.h"

#include "Spacemint/desktop/linux/DBusCall.h"

#include <QDBusMessage>
#include <QPromise>
#include <QVariantMap>

#include <memory>
#include <utility>

namespace spacemint {

namespace {

const QString service = QStringLiteral("org.freedesktop.Notifications");
const QString path = QStringLiteral("/org/freedesktop/Notifications");
const QString defaultAction = QStringLiteral("default");
const QString applicationId = QStringLiteral("app.spacemint.Spacemint");
constexpr int whenTheServiceSees = -1;

QDBusMessage method(const char* name) {
  return QDBusMessage::createMethodCall(service, path, service, QLatin1String(name));
}

QVariantMap hintsOf(const Notification& notification) {
  constexpr uchar normal = 1;
  constexpr uchar critical = 2;
  QVariantMap hints{
      {QStringLiteral("urgency"), QVariant::fromValue(notification.isCritical ? critical : normal)},
      {QStringLiteral("desktop-entry"), applicationId}};
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
      watcher_(service, bus, QDBusServiceWatcher::WatchForOwnerChange) {
  connect(&watcher_, &QDBusServiceWatcher::serviceOwnerChanged, this, &DBusNotifier::forget);
  bus_.connect(service, path, service, QStringLiteral("ActionInvoked"), this,
               SLOT(actionInvoked(uint, QString)));
  bus_.connect(service, path, service, QStringLiteral("NotificationClosed"), this,
               SLOT(notificationClosed(uint, uint)));
}

QFuture<bool> DBusNotifier::show(const Notification& notification) {
  auto promise = std::make_shared<QPromise<bool>>();
  promise->start();
  const Answer answer = [promise](bool isAccepted) {
    promise->addResult(isAccepted);
    promise->finish();
  };
  if (readsMarkup_) {
    send(notification, answer);
  } else {
    findOutAboutMarkup([this, notification, answer](bool isKnown) {
      if (!isKnown) return answer(false);
      send(notification, answer);
    });
  }
  return promise->future();
}

// Each notification asks for itself until the answer is known, so they go out in the order of the calls.
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
  call << QStringLiteral("Spacemint") << replacesNone << applicationId
       << QString::fromStdString(notification.title)
       << (readsMarkup_.value_or(false) ? body.toHtmlEscaped() : body)
       << QStringList{defaultAction, QStringLiteral("Open Spacemint")} << hintsOf(notification)
       << whenTheServiceSees;
  callAsync(bus_, call, this, [this, answer](const QDBusMessage& reply) {
    const bool isAccepted = reply.type() == QDBusMessage::ReplyMessage;
    if (isAccepted) shown_.insert(reply.arguments().value(0).toUInt());
    answer(isAccepted);
  });
}

QFuture<bool> DBusNotifier::isAllowed() {
  auto promise = std::make_shared<QPromise<bool>>();
  promise->start();
  callAsync(bus_, method("GetServerInformation"), this, [promise](const QDBusMessage& reply) {
    promise->addResult(reply.type() == QDBusMessage::ReplyMessage);
    promise->finish();
  });
  return promise->future();
}

void DBusNotifier::actionInvoked(uint id, const QString& action) {
  if (action == defaultAction && shown_.contains(id)) Q_EMIT activated();
}

void DBusNotifier::notificationClosed(uint id, uint /*reason*/) {
  shown_.remove(id);
}

// Another service counts from the beginning again, and may read texts differently.
void DBusNotifier::forget() {
  shown_.clear();
  readsMarkup_.reset();
}

}  // namespace spacemint
