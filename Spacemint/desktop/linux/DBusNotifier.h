#pragma once

#include "Spacemint/desktop/Notifier.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QSet>

#include <functional>
#include <optional>
#include <utility>

namespace spacemint {

/// Notifications by the D-Bus service org.freedesktop.Notifications, which the bus starts if it can. Main
/// thread only; never blocks.
class DBusNotifier final : public Notifier {
  Q_OBJECT
 public:
  explicit DBusNotifier(const QDBusConnection& bus);

  void show(const Notification& notification, QObject* context, Answer answer) override;
  /// The same as `askIfAllowed`: this service needs no permission.
  void requestAuthorization(QObject* context, Answer answer) override {
    askIfAllowed(context, std::move(answer));
  }
  /// Whether a service answers. The service does not tell whether the user has silenced this application.
  void askIfAllowed(QObject* context, Answer answer) override;

 private Q_SLOTS:
  void actionInvoked(uint id, const QString& action);
  void notificationClosed(uint id, uint reason);

 private:
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
