#pragma once

#include "Spacemint/model/CurrentFindings.h"
#include "Spacemint/model/ScanLifecycle.h"
#include "Spacemint/model/VolumeWatch.h"
#include "Spacemint/model/WarningState.h"

#include <QObject>

namespace spacemint {

/// Warns the user when space runs low, and knows whether the desktop shows notifications. Main thread only.
///
/// A warning counts as given only when a notification service has accepted it. Until then it is tried again
/// when a service appears, and every `retryAfter`.
class SpaceWarnings : public QObject {
  Q_OBJECT
 public:
  /// A warning starts a scan when the last scan is older than this, so that the application can show what
  /// takes the space.
  static constexpr std::chrono::hours staleAfter{1};
  static constexpr std::chrono::minutes retryAfter{10};

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

  /// Without `mayNotify` no notification is shown and no permission is requested.
  SpaceWarnings(const Parts& parts, const Desktop& desktop, Words words, bool mayNotify);

  SpaceLevel level() const;
  bool notificationsAllowed() const { return notificationsAllowed_; }

  /// Decides by the last reading of the volume whether to warn now. Call it after every reading.
  void evaluate();
  void sendTestNotification();
  void requestAuthorization();
  void refreshNotificationStatus();

 Q_SIGNALS:
  void notificationsAllowedChanged();

 private:
  /// What became of the warning that is due.
  enum class Attempt : std::uint8_t { none, running, refused };

  void warn(const Warning& warning);
  void finish(const Warning& warning, bool isAccepted);
  void tryAgain();

  Parts parts_;
  Desktop desktop_;
  Words words_;
  bool mayNotify_;
  bool notificationsAllowed_ = true;
  /// The last warning that a notification service accepted.
  std::optional<Warning> lastWarning_;
  Attempt attempt_ = Attempt::none;
  /// True from the first attempt to give a warning until it is given or no longer due.
  bool isDue_ = false;
};

}  // namespace spacemint
