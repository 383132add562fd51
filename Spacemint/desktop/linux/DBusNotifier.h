#pragma once

#include "Spacemint/desktop/Notifier.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QSet>

#include <functional>
#include <optional>

namespace spacemint {

/// Notifications by the service org.freedesktop.Notifications, which the bus starts where it can. Never waits
/// for the service. Where there is none, nothing is shown.
class DBusNotifier final : public Notifier {
  Q_OBJECT
 public:
  explicit DBusNotifier(const QDBusConnection& bus);

  QFuture<bool> show(const Notification& notification) override;
  /// Nobody has to be asked here.
  QFuture<bool> requestAuthorization() override { return isAllowed(); }
  /// Whether a service answers. What the user has silenced in its settings it does not tell.
  QFuture<bool> isAllowed() override;

 private Q_SLOTS:
  void actionInvoked(uint id, const QString& action);
  void notificationClosed(uint id, uint reason);

 private:
  using Answer = std::function<void(bool isAccepted)>;

  void findOutAboutMarkup(std::function<void(bool isKnown)> then);
  void send(const Notification& notification, const Answer& answer);
  void forget();

  QDBusConnection bus_;
  QDBusServiceWatcher watcher_;
  /// Those of ours that may still be clicked.
  QSet<uint> shown_;
  /// Whether the service reads the text as markup; absent until it has been asked.
  std::optional<bool> readsMarkup_;
};

}  // namespace spacemint
