#pragma once

#include <QFuture>
#include <QObject>

#include <string>

namespace spacemint {

struct Notification {
  std::string title;
  std::string body;
  /// Urgent: the desktop keeps the notification on the screen until the user has seen it.
  bool isCritical = false;
  bool hasSound = false;

  bool operator==(const Notification&) const = default;
};

/// The desktop's notifications. Main thread only.
class Notifier : public QObject {
  Q_OBJECT
 public:
  ~Notifier() override;

  /// Shows a new notification; earlier ones stay. The future always finishes, on the main thread: with true
  /// once the desktop's notification service has accepted the notification, with false when there is no
  /// service or the service answered with an error.
  virtual QFuture<bool> show(const Notification& notification) = 0;

  /// Asks the user for the permission to notify, on desktops that require one. Answers as `isAllowed`.
  virtual QFuture<bool> requestAuthorization() = 0;

  /// True when the desktop shows notifications of this application.
  virtual QFuture<bool> isAllowed() = 0;

 Q_SIGNALS:
  /// The user clicked a notification of this application.
  void activated();
  /// A notification service has started. A notification that was not accepted before may be shown again.
  void serviceAppeared();
};

}  // namespace spacemint
