#pragma once

#include <QFuture>
#include <QObject>

#include <string>

namespace spacemint {

struct Notification {
  std::string title;
  std::string body;
  /// It cannot wait: the desktop keeps it on the screen until it is seen.
  bool isCritical = false;
  bool hasSound = false;

  bool operator==(const Notification&) const = default;
};

/// The desktop's notifications. Main thread only.
class Notifier : public QObject {
  Q_OBJECT
 public:
  ~Notifier() override;

  /// Shows a new one, also beside those that are there. Where that fails nothing is said.
  virtual void post(const Notification& notification) = 0;

  /// Asks for the right to notify, where somebody has to be asked; whether there is one now.
  virtual QFuture<bool> requestAuthorization() = 0;

  /// Whether notifications are shown at all.
  virtual QFuture<bool> isAllowed() = 0;

 Q_SIGNALS:
  /// The user clicked one of ours.
  void activated();
};

}  // namespace spacemint
