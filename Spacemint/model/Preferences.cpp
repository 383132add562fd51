#include "Spacemint/model/Preferences.h"

#include "core/base/Log.h"

#include <algorithm>
#include <map>
#include <utility>
#include <vector>

namespace spacemint {

struct Preferences::Observers {
  struct Observer {
    std::vector<Setting> settings;
    std::shared_ptr<const Callback> callback;
  };

  // A callback may subscribe and unsubscribe others and itself: those that are there at first are gone
  // through by number, and each is looked up when its turn comes.
  void tell(Setting changed) {
    std::vector<std::uint64_t> numbers;
    numbers.reserve(all.size());
    for (const auto& [number, observer] : all) numbers.push_back(number);
    for (const std::uint64_t number : numbers) {
      const auto observer = all.find(number);
      if (observer == all.end() || std::ranges::count(observer->second.settings, changed) == 0) continue;
      const std::shared_ptr<const Callback> callback = observer->second.callback;
      (*callback)(changed);
    }
  }

  std::map<std::uint64_t, Observer> all;
  std::uint64_t lastNumber = 0;
};

Preferences::Preferences(DefaultsStore& defaults)
    : defaults_(defaults),
      observers_(std::make_shared<Observers>()) {
  defaults_.registerDefaults(registeredSettings());
  values_ = load(defaults_);
  revision_ = defaults_.revision();
}

Preferences::~Preferences() = default;

Preferences::Values Preferences::load(const DefaultsStore& defaults) {
  const auto key = [](Setting setting) { return describe(setting).key; };
  return {.warningThresholdGB = defaults.integer(key(Setting::warningThresholdGB)).value_or(0),
          .scope = scanScope(defaults.string(key(Setting::scope)).value_or("")),
          .scanIntervalHours = defaults.integer(key(Setting::scanIntervalHours)).value_or(0),
          .showFreeSpaceInMenuBar = defaults.boolean(key(Setting::showFreeSpaceInMenuBar)).value_or(false),
          .presence = appPresence(defaults.string(key(Setting::presence)).value_or("")),
          .hasStarted = defaults.boolean(key(Setting::hasStarted)).value_or(false),
          .unwatchedVolumes =
              defaults.strings(key(Setting::unwatchedVolumes)).value_or(std::vector<std::string>{}),
          .itemColour = spacemint::itemColour(defaults.string(key(Setting::itemColour)).value_or("")),
          .excludes = defaults.strings(key(Setting::excludes)).value_or(std::vector<std::string>{})};
}

template <typename Value>
void Preferences::write(Setting setting, Value& held, Value value, const DefaultsValue& stored) {
  const bool changes = held != value;
  held = std::move(value);
  const auto written = defaults_.set(describe(setting).key, stored);
  lastWriteError_ = written ? std::nullopt : std::optional<Error>{written.error()};
  if (!written) log(LogLevel::info, "a setting could not be stored: " + written.error().message);
  if (changes) observers_->tell(setting);
}

void Preferences::setWarningThresholdGB(std::int64_t gigabytes) {
  write(Setting::warningThresholdGB, values_.warningThresholdGB, gigabytes, gigabytes);
}

void Preferences::setScope(ScanScope scope) {
  write(Setting::scope, values_.scope, scope, std::string{rawValue(scope)});
}

void Preferences::setScanIntervalHours(std::int64_t hours) {
  write(Setting::scanIntervalHours, values_.scanIntervalHours, hours, hours);
}

void Preferences::setShowFreeSpaceInMenuBar(bool shows) {
  write(Setting::showFreeSpaceInMenuBar, values_.showFreeSpaceInMenuBar, shows, shows);
}

void Preferences::setPresence(AppPresence presence) {
  write(Setting::presence, values_.presence, presence, std::string{rawValue(presence)});
}

void Preferences::setItemColour(ItemColour colour) {
  write(Setting::itemColour, values_.itemColour, colour, std::string{rawValue(colour)});
}

void Preferences::setHasStarted(bool hasStarted) {
  write(Setting::hasStarted, values_.hasStarted, hasStarted, hasStarted);
}

void Preferences::setUnwatchedVolumes(std::vector<std::string> mountPoints) {
  const DefaultsArray stored(mountPoints.begin(), mountPoints.end());
  write(Setting::unwatchedVolumes, values_.unwatchedVolumes, std::move(mountPoints), stored);
}

void Preferences::setExcludes(std::vector<std::string> patterns) {
  const DefaultsArray stored(patterns.begin(), patterns.end());
  write(Setting::excludes, values_.excludes, std::move(patterns), stored);
}

Preferences::Subscription Preferences::observe(std::span<const Setting> settings, Callback callback) {
  const std::uint64_t number = ++observers_->lastNumber;
  observers_->all.emplace(
      number, Observers::Observer{.settings = {settings.begin(), settings.end()},
                                  .callback = std::make_shared<const Callback>(std::move(callback))});
  return {observers_, number};
}

void Preferences::refresh() {
  defaults_.refresh();
  // Not the values themselves: one that could not be stored is to stay.
  if (std::exchange(revision_, defaults_.revision()) == defaults_.revision()) return;
  const Values old = std::exchange(values_, load(defaults_));
  const Values now = values_;
  // All values are in place before the first observer looks.
  const auto tell = [this](Setting setting, bool changed) {
    if (changed) observers_->tell(setting);
  };
  tell(Setting::warningThresholdGB, old.warningThresholdGB != now.warningThresholdGB);
  tell(Setting::scope, old.scope != now.scope);
  tell(Setting::scanIntervalHours, old.scanIntervalHours != now.scanIntervalHours);
  tell(Setting::showFreeSpaceInMenuBar, old.showFreeSpaceInMenuBar != now.showFreeSpaceInMenuBar);
  tell(Setting::presence, old.presence != now.presence);
  tell(Setting::hasStarted, old.hasStarted != now.hasStarted);
  tell(Setting::unwatchedVolumes, old.unwatchedVolumes != now.unwatchedVolumes);
  tell(Setting::itemColour, old.itemColour != now.itemColour);
  tell(Setting::excludes, old.excludes != now.excludes);
}

Preferences::Subscription::Subscription(std::weak_ptr<Observers> observers, std::uint64_t number)
    : observers_(std::move(observers)),
      number_(number) {}

Preferences::Subscription& Preferences::Subscription::operator=(Subscription&& other) noexcept {
  std::swap(observers_, other.observers_);
  std::swap(number_, other.number_);
  return *this;
}

Preferences::Subscription::~Subscription() {
  if (const auto observers = observers_.lock()) observers->all.erase(number_);
}

}  // namespace spacemint
