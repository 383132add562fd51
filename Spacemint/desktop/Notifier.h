#pragma once

#include <QObject>

#include <functional>
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
///
/// Each call answers once, perhaps before it returns, unless `context` was destroyed before.
class Notifier : public QObject {
  Q_OBJECT
 public:
  ~Notifier() override;

  using Answer = std::function<void(bool)>;

  /// Shows a new notification; earlier ones stay. Calls `answer` with true when the desktop's notification
  /// service has accepted the notification, with false when there is no service or the service answered with
  /// an error.
  virtual void show(const Notification& notification, QObject* context, Answer answer) = 0;

  /// Asks the user for the permission to notify, on desktops that require one. Answers as `askIfAllowed`.
  virtual void requestAuthorization(QObject* context, Answer answer) = 0;

  /// Answers true when the desktop shows notifications of this application.
  virtual void askIfAllowed(QObject* context, Answer answer) = 0;

 Q_SIGNALS:
  /// The user clicked a notification of this application.
  void activated();
  /// A notification service has started. A notification that was not accepted before may be shown again.
  void serviceAppeared();
};

}  // namespace spacemint
