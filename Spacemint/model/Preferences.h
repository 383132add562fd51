#pragma once

#include "core/host/DefaultsStore.h"
#include "core/settings/Settings.h"

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace spacemint {

/// The user's settings as the running application holds them, each kept in the defaults store.
///
/// Values come from the store as they are: a number there may be any, also zero and below. Main thread only,
/// callbacks included.
class Preferences {
 public:
  using Callback = std::function<void(Setting)>;

  /// Keeps a callback subscribed while it lives. May outlive the preferences.
  class Subscription;

  /// The settings whose change the application follows at once, in the window, the status item and the scans.
  static constexpr std::array<Setting, 8> followedAtOnce{Setting::showFreeSpaceInMenuBar,
                                                         Setting::warningThresholdGB,
                                                         Setting::scanIntervalHours,
                                                         Setting::scope,
                                                         Setting::presence,
                                                         Setting::unwatchedVolumes,
                                                         Setting::itemColour,
                                                         Setting::excludes};

  /// Registers the defaults of all settings with the store and loads every value. The store outlives this.
  explicit Preferences(DefaultsStore& defaults);
  Preferences(const Preferences&) = delete;
  Preferences& operator=(const Preferences&) = delete;
  ~Preferences();

  /// Free space, in units of 1,000,000,000 bytes, below which the user is warned.
  std::int64_t warningThresholdGB() const { return values_.warningThresholdGB; }
  ScanScope scope() const { return values_.scope; }
  std::int64_t scanIntervalHours() const { return values_.scanIntervalHours; }
  bool showFreeSpaceInMenuBar() const { return values_.showFreeSpaceInMenuBar; }
  AppPresence presence() const { return values_.presence; }
  ItemColour itemColour() const { return values_.itemColour; }
  /// Whether the user has begun; until then no scan runs by itself.
  bool hasStarted() const { return values_.hasStarted; }
  /// The mount points of volumes whose space the user does not want to be warned about.
  const std::vector<std::string>& unwatchedVolumes() const { return values_.unwatchedVolumes; }
  /// The patterns of what scans leave out; a wrong one counts for nothing (`Excludes::usable`).
  const std::vector<std::string>& excludes() const { return values_.excludes; }

  /// Setters always store the value, and notify the setting's observers only when the value differs. If
  /// storing fails, the new value is kept in memory and `lastWriteError` is set.
  void setWarningThresholdGB(std::int64_t gigabytes);
  void setScope(ScanScope scope);
  void setScanIntervalHours(std::int64_t hours);
  void setShowFreeSpaceInMenuBar(bool shows);
  void setPresence(AppPresence presence);
  void setItemColour(ItemColour colour);
  void setHasStarted(bool hasStarted);
  void setUnwatchedVolumes(std::vector<std::string> mountPoints);
  void setExcludes(std::vector<std::string> patterns);

  /// Calls back after each change of one of `settings`.
  [[nodiscard]] Subscription observe(std::span<const Setting> settings, Callback callback);

  /// Takes over what another process has stored since, and tells of each setting that changed. Cheap when
  /// there is nothing new.
  void refresh();

  /// Why the setting written last could not be stored; absent when it was.
  const std::optional<Error>& lastWriteError() const { return lastWriteError_; }

 private:
  struct Values {
    std::int64_t warningThresholdGB = 0;
    ScanScope scope = ScanScope::home;
    std::int64_t scanIntervalHours = 0;
    bool showFreeSpaceInMenuBar = false;
    AppPresence presence = AppPresence::menuBar;
    bool hasStarted = false;
    std::vector<std::string> unwatchedVolumes;
    ItemColour itemColour = ItemColour::automatic;
    std::vector<std::string> excludes;
  };
  struct Observers;

  static Values load(const DefaultsStore& defaults);
  template <typename Value>
  void write(Setting setting, Value& held, Value value, const DefaultsValue& stored);

  DefaultsStore& defaults_;
  Values values_;
  std::uint64_t revision_ = 0;
  std::shared_ptr<Observers> observers_;
  std::optional<Error> lastWriteError_;
};

class Preferences::Subscription {
 public:
  Subscription() = default;
  Subscription(Subscription&&) noexcept = default;
  Subscription& operator=(Subscription&& other) noexcept;
  Subscription(const Subscription&) = delete;
  Subscription& operator=(const Subscription&) = delete;
  ~Subscription();

 private:
  friend class Preferences;
  Subscription(std::weak_ptr<Observers> observers, std::uint64_t number);

  std::weak_ptr<Observers> observers_;
  std::uint64_t number_ = 0;
};

}  // namespace spacemint
