#pragma once

#include "Spacemint/model/AppContext.h"
#include "Spacemint/model/Findings.h"
#include "Spacemint/model/GrowthNow.h"
#include "Spacemint/model/ScanLifecycle.h"
#include "Spacemint/model/VolumeWatch.h"
#include "core/volume/Supply.h"

#include <QObject>

#include <compare>
#include <cstdint>
#include <map>
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

/// A warning of the same or a lower level is repeated after this time.
inline constexpr std::chrono::hours minimumGap{12};

struct Reading {
  /// Bytes of space, or the number of files that still fit.
  std::int64_t free = 0;
  SpaceLimits limits;
  Date now;
};

struct Next {
  std::optional<Warning> last = {};
  /// Warn now, at the level of `last`.
  bool warns = false;

  bool operator==(const Next&) const = default;
};

/// What follows from a reading. A last warning that is dated after `Reading::now` (the clock
/// was set back) counts as given at an unknown time: it does not hold back the next one.
Next after(const std::optional<Warning>& last, const Reading& reading);

}  // namespace WarningState

/// The texts of the notifications.
namespace WarningText {

struct Arguments {
  /// What to warn about; not empty.
  const std::vector<Supply>& supplies;
  const std::vector<Growth>& growth;
  /// What filled the disk in the last ten minutes, if that is known; named in place of `growth`.
  const std::optional<GrowthLine>& culprit;
  std::string_view home;
  const std::string& locale;
};

/// One message for all supplies.
Notification warning(const Arguments& arguments);

/// Shows the user that notifications arrive.
Notification test(std::int64_t thresholdGB, const std::string& locale);

}  // namespace WarningText

/// Warns the user when space or the number of files runs low on a volume, and knows whether the desktop shows
/// notifications. Main thread only.
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
    GrowthNow& growing;
  };

  /// Unless `AppContext::mayNotify`, no notification is shown and no permission is requested.
  SpaceWarnings(const Parts& parts, const AppContext& context, const Desktop& desktop);

  /// Of the space of the volume with the home folder.
  SpaceLevel level() const;
  bool notificationsAllowed() const { return notificationsAllowed_; }
  /// The home folder's volume, if the number of its files runs low.
  std::optional<Supply> lowFiles() const;
  /// The folder that the last warning named as what fills the disk, or that holds the file which it named;
  /// empty if it named none.
  const std::string& namedFolder() const { return namedFolder_; }

  /// Whether `evaluate` would warn now.
  bool isDue() const;
  /// Decides by the last readings of the volumes whether to warn now. Call it after every reading.
  void evaluate();
  void sendTestNotification();
  void requestAuthorization();
  void refreshNotificationStatus();

 Q_SIGNALS:
  void notificationsAllowedChanged();

 private:
  /// What became of the warning that is due.
  enum class Attempt : std::uint8_t { none, running, refused };

  /// Each supply has a state of its own.
  struct Key {
    std::uint64_t pool = 0;
    Resource resource = Resource::space;

    auto operator<=>(const Key&) const = default;
  };
  using Warnings = std::map<Key, Warning>;

  /// What the last readings mean: the states that stay, and the supplies to warn of now with their new
  /// states.
  struct Assessment {
    Warnings held;
    Warnings due;
    std::vector<Supply> low;
  };

  std::vector<Supply> supplies() const;
  void holdUnanswered(Warnings& held) const;
  Assessment assess() const;
  std::optional<Warning> lastOf(const Key& key) const;
  void warn(const std::vector<Supply>& supplies, const Warnings& warnings);
  void show(const std::vector<Supply>& supplies, const Warnings& warnings);
  void finish(const Warnings& warnings, bool isAccepted);
  void tryAgain();

  Parts parts_;
  const AppContext& context_;
  Desktop desktop_;
  bool notificationsAllowed_ = true;
  /// The last warnings that a notification service accepted.
  Warnings lastWarnings_;
  Attempt attempt_ = Attempt::none;
  std::string namedFolder_;
  /// True from the first attempt to give a warning until it is given or no longer due.
  bool isDue_ = false;
};

}  // namespace spacemint
