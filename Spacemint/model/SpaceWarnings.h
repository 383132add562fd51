#pragma once

#include "Spacemint/model/AppContext.h"
#include "Spacemint/model/Findings.h"
#include "Spacemint/model/ScanLifecycle.h"
#include "Spacemint/model/VolumeWatch.h"
#include "core/volume/SpaceLevel.h"

#include <QObject>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

/// When the user was last warned, and of which level.
struct Warning {
  Date date;
  SpaceLevel level = SpaceLevel::ok;

  bool operator==(const Warning&) const = default;
};

/// Decides which readings of the free space are worth a warning. Pure.
namespace WarningState {

/// After a warning, free space must exceed the threshold by this much before the next fall below the
/// threshold warns at once.
inline constexpr Bytes rearmMargin = 2 * gigabyte;
/// A warning of the same or a lower level is repeated after this time.
inline constexpr std::chrono::hours minimumGap{12};

struct Reading {
  Bytes free = 0;
  /// Any number; used as `warningThreshold` does.
  std::int64_t thresholdGB = 0;
  Date now;
};

struct Next {
  std::optional<Warning> last = {};
  /// Warn now, at the level of `last`.
  bool warns = false;

  bool operator==(const Next&) const = default;
};

/// What follows from a reading of the volume. A last warning that is dated after `Reading::now` (the clock
/// was set back) counts as given at an unknown time: it does not hold back the next one.
Next after(const std::optional<Warning>& last, const Reading& reading);

}  // namespace WarningState

/// The texts of the notifications.
namespace WarningText {

struct Arguments {
  const VolumeStatus& volume;
  SpaceLevel level = SpaceLevel::low;
  const std::vector<Growth>& growth;
  std::string_view home;
  const std::string& locale;
};

Notification warning(const Arguments& arguments);

/// Shows the user that notifications arrive.
Notification test(std::int64_t thresholdGB);

}  // namespace WarningText

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

  /// Unless `AppContext::mayNotify`, no notification is shown and no permission is requested.
  SpaceWarnings(const Parts& parts, const AppContext& context, const Desktop& desktop);

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
  const AppContext& context_;
  Desktop desktop_;
  bool notificationsAllowed_ = true;
  /// The last warning that a notification service accepted.
  std::optional<Warning> lastWarning_;
  Attempt attempt_ = Attempt::none;
  /// True from the first attempt to give a warning until it is given or no longer due.
  bool isDue_ = false;
};

}  // namespace spacemint
