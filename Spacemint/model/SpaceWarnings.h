#pragma once

#include "Spacemint/model/CurrentFindings.h"
#include "Spacemint/model/ScanLifecycle.h"
#include "Spacemint/model/VolumeWatch.h"
#include "Spacemint/model/WarningState.h"

#include <QObject>

namespace spacemint {

/// Warns once when space runs low, and knows whether anybody will see that. Main thread only.
class SpaceWarnings : public QObject {
  Q_OBJECT
 public:
  /// A scan that is older is made again after a warning, to say what takes the space.
  static constexpr std::chrono::hours staleAfter{1};

  struct Parts {
    const VolumeWatch& volume;
    const CurrentFindings& findings;
    const ScanHistory& history;
    const Preferences& preferences;
    ScanLifecycle& scans;
  };

  struct Words {
    std::string home;
    std::string locale;
  };

  /// Without `mayNotify` nothing is ever shown and nobody is asked for the right to.
  SpaceWarnings(const Parts& parts, const Desktop& desktop, Words words, bool mayNotify);

  SpaceLevel level() const;
  bool notificationsAllowed() const { return notificationsAllowed_; }

  /// Looks at the last reading.
  void evaluate();
  void sendTestNotification();
  void requestAuthorization();
  void refreshNotificationStatus();

 Q_SIGNALS:
  void notificationsAllowedChanged();

 private:
  void post(const Notification& notification);

  Parts parts_;
  Desktop desktop_;
  Words words_;
  bool mayNotify_;
  bool notificationsAllowed_ = true;
  std::optional<Warning> lastWarning_;
};

}  // namespace spacemint
