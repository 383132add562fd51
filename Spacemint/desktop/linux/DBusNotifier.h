#pragma once

#include "Spacemint/desktop/Notifier.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QSet>

#include <functional>
#include <optional>

namespace spacemint {

/// Notifications by the D-Bus service org.freedesktop.Notifications, which the bus starts if it can. Main
/// thread only; never blocks.
class DBusNotifier final : public Notifier {
  Q_OBJECT
 public:
  explicit DBusNotifier(const QDBusConnection& bus);

  QFuture<bool> show(const Notification& notification) override;
  /// The same as `isAllowed`: this service needs no permission.
  QFuture<bool> requestAuthorization() override { return isAllowed(); }
  /// Whether a service answers. The service does not tell whether the user has silenced this application.
  QFuture<bool> isAllowed() override;

 private Q_SLOTS:
  void actionInvoked(uint id, const QString& action);
  void notificationClosed(uint id, uint reason);

 private:
  using Answer = std::function<void(bool isAccepted)>;

  void findOutAboutMarkup(std::function<void(bool isKnown)> then);
  void send(const Notification& notification, const Answer& answer);
  void serviceChanged(bool isThere);

  QDBusConnection bus_;
  QDBusServiceWatcher watcher_;
  /// The ids of our notifications that are still shown.
  QSet<uint> shown_;
  /// Whether the service reads the body as markup; absent until the service has answered.
  std::optional<bool> readsMarkup_;
};

}  // namespace spacemint
