#pragma once

#include "Spacemint/desktop/Desktop.h"
#include "support/TemporaryFolder.h"

#include <QPointer>

#include <deque>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace spacemint::support {

/// Time that passes when a test says so. Timers follow the time that passes; the date can also jump.
class FakeClock final : public Clock {
 public:
  Date now() const override { return Date{passed_} + offset_; }
  std::chrono::steady_clock::time_point steadyNow() const override {
    return std::chrono::steady_clock::time_point{passed_};
  }
  void after(std::chrono::milliseconds delay, QObject* context, Callback callback) override;
  void every(const Repeating& timing, QObject* context, Callback callback) override;

  void setDate(Date date) { offset_ = date - Date{passed_}; }
  /// Lets the next timer ring that does within `rest`, and takes what passed until then from it; false when
  /// there is none, and all of it passed.
  bool ringNext(std::chrono::microseconds& rest);

 private:
  struct Timer {
    QPointer<QObject> context;
    Callback callback;
    std::optional<std::chrono::microseconds> interval = {};
  };

  std::chrono::microseconds passed_{0};
  std::chrono::microseconds offset_{0};
  std::multimap<std::chrono::microseconds, Timer> timers_;
};

/// Tasks that run one after the other, on the test's own thread, when it says so.
class FakeTasks final : public Tasks {
 public:
  void start(Task task) override { waiting_.push_back(std::move(task)); }
  void post(Function function) override { posted_.push_back(std::move(function)); }

  /// Tasks of this priority wait until they are released.
  void hold(Priority priority) { held_.insert(priority); }
  void release(Priority priority) { held_.erase(priority); }
  /// Runs the work of the next held task, but does not tell that it is done.
  void runHeldWork(Priority priority);
  bool runNext();

 private:
  std::deque<Task> waiting_;
  std::deque<Function> posted_;
  std::set<Priority> held_;
};

class FakeNotifier final : public Notifier {
 public:
  void show(const Notification& notification, QObject* /*context*/, Answer answer) override {
    if (hasService) {
      posted.push_back(notification);
      if (onPost) onPost(notification);
    } else {
      ++refused;
    }
    answer(hasService);
  }
  void requestAuthorization(QObject* /*context*/, Answer answer) override {
    ++requests;
    answer(allowed);
  }
  void askIfAllowed(QObject* /*context*/, Answer answer) override { answer(allowed); }

  std::vector<Notification> posted;
  std::function<void(const Notification&)> onPost;
  /// Without a service every notification is refused, and counted in `refused`.
  bool hasService = true;
  int refused = 0;
  int requests = 0;
  bool allowed = true;
};

/// Keeps what is moved there in a folder of its own.
class FakeTrash final : public TrashCan {
 public:
  std::expected<std::string, RemovalFailure> move(const RemovalTarget& target) override;

  TemporaryFolder folder;
};

class FakeOpener final : public Opener {
 public:
  void openUrl(const std::string& url, std::function<void()> /*failed*/) override { urls.push_back(url); }
  void openSettings(SettingsPage page) override { pages.push_back(page); }
  void reveal(const std::string& path) override { revealed.push_back(path); }
  void chooseFile(const std::string& /*title*/, Chosen chosen, std::function<void()> failed) override {
    hasDialog ? chosen(chosenFile) : failed();
  }
  void findFileManager(std::function<void(const std::string& name)> /*found*/) override {}

  bool hasDialog = true;
  std::string chosenFile;
  std::vector<std::string> urls;
  std::vector<SettingsPage> pages;
  std::vector<std::string> revealed;
};

/// Runs activities exactly at their intervals, or up to a minute after the next good moment.
class FakeScheduler final : public ActivityScheduler {
 public:
  explicit FakeScheduler(Clock& clock) : clock_(clock) {}
  std::unique_ptr<Scheduled> schedule(const Activity& activity, Handler handler) override;
  bool isGoodMoment() const override { return isGood; }

  bool isGood = true;
  /// All that were ever scheduled.
  std::vector<Activity> activities;
  /// Runs that began, and those that are over.
  int begun = 0;
  int finished = 0;

 private:
  class Repeating;
  Clock& clock_;
};

class FakeVolume final : public StartupVolume {
 public:
  std::optional<VolumeStatus> status() override {
    ++readings;
    return current;
  }
  bool mayHang() override { return hangs; }
  std::vector<VolumeReading> all() override { return others; }

  std::optional<VolumeStatus> current = VolumeStatus{"Disk", 500 * 1'000'000'000LL, 100 * 1'000'000'000LL};
  bool hangs = false;
  int readings = 0;
  /// All volumes.
  std::vector<VolumeReading> others;
};

class FakeStatusItem final : public StatusItem {
 public:
  void install() override { installed = true; }
  void remove() override { installed = false; }
  bool isInstalled() const override { return installed; }
  void setLook(const StatusLook& newLook) override { look = newLook; }
  void setMenu(std::vector<StatusMenuEntry> entries) override { menu = std::move(entries); }
  Area area() const override { return current; }
  bool opensMenuOnClick() const override { return opensMenu; }
  std::optional<QPoint> position() const override { return clickedAt; }

  void click(QPoint at) {
    clickedAt = at;
    Q_EMIT activated();
  }
  void setArea(Area area) {
    current = area;
    Q_EMIT areaChanged();
  }

  bool installed = false;
  StatusLook look;
  std::vector<StatusMenuEntry> menu;
  bool opensMenu = false;
  Area current = Area::present;
  std::optional<QPoint> clickedAt;
};

class FakeBadge final : public Badge {
 public:
  void show(Bytes free) override { shown = free; }
  void clear() override { shown.reset(); }

  std::optional<Bytes> shown;
};

class FakeAppearance final : public Appearance {
 public:
  void follow() override {}
  bool isDark() const override { return dark; }
  bool isStatusAreaDark() const override { return dark; }
  bool reducedMotion() const override { return still; }
  bool hasTransparency() const override { return transparent; }

  bool dark = false;
  bool still = false;
  bool transparent = true;
};

class FakeLoginItem final : public LoginItem {
 public:
  bool isEnabled() const override { return enabled; }
  std::expected<void, Error> enable() override { return set(true); }
  std::expected<void, Error> disable() override { return set(false); }

  bool enabled = false;
  std::optional<Error> failure;

 private:
  std::expected<void, Error> set(bool value) {
    if (failure) return std::unexpected(*failure);
    enabled = value;
    return {};
  }
};

/// Clicks that a test makes.
class FakeOutsideClicks final : public OutsideClicks {
 public:
  std::unique_ptr<Watch> watch(const QWindow& /*window*/, std::function<void()> clicked) override {
    auto watch = std::make_unique<OneWatch>();
    watch->clicked = std::move(clicked);
    last_ = watch.get();
    return watch;
  }
  /// Does nothing where nobody watches.
  void click() const {
    if (last_) std::function{last_->clicked}();
  }

 private:
  struct OneWatch final : QObject, Watch {
    std::function<void()> clicked;
  };
  QPointer<OneWatch> last_;
};

/// A desktop whose time a test moves by hand, on one thread.
class FakeDesktop {
 public:
  FakeClock clock;
  FakeTasks tasks;
  FakeNotifier notifier;
  FakeTrash trash;
  FakeOpener opener;
  FakeScheduler scheduler{clock};
  FakeVolume volume;
  FakeStatusItem statusItem;
  FakeBadge badge;
  FakeAppearance appearance;
  FakeLoginItem loginItem;
  FakeOutsideClicks outsideClicks;

  Desktop desktop() {
    return {clock,  tasks,      notifier, trash,      opener,    scheduler,
            volume, statusItem, badge,    appearance, loginItem, outsideClicks};
  }

  /// Runs everything that can run without time passing.
  void settle();
  /// Lets time pass, and everything happen that happens in it.
  void advance(std::chrono::microseconds time);
};

}  // namespace spacemint::support
