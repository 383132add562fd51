#include "Spacemint/model/AppModel.h"

#include "core/base/Isolate.h"
#include "core/base/Log.h"
#include "core/base/Translation.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace spacemint {

namespace {

// A smaller old backup has no card.
constexpr Bytes oldBackupMinimum = 2'000'000'000;
constexpr double oldBackupDays = 90;

}  // namespace

std::string titleOf(Tab tab) {
  constexpr std::array titles{i18nMark("Overview"), i18nMark("Folders"), i18nMark("Large files"),
                              i18nMark("Developer")};
  return i18n(titles.at(static_cast<std::size_t>(tab)));
}

AppModel::AppModel(AppContext context, const Desktop& desktop)
    : context_(std::move(context)),
      desktop_(desktop),
      prefs_(context_.defaults),
      volume_(desktop),
      freeSpace_(FreeSpaceRecord::ofVolume(context_.state, context_.homeVolume)),
      history_(context_.store, desktop.tasks, desktop.clock, messages_),
      findings_(history_, desktop.tasks, context_),
      shown_({.history = history_, .findings = findings_, .messages = messages_}, desktop.tasks,
             desktop.clock, context_.locale),
      account_(history_, desktop.tasks, desktop.clock, context_),
      scans_({.history = history_, .messages = messages_, .preferences = prefs_, .volume = volume_}, context_,
             desktop),
      growing_(context_, desktop, [this] { return scans_.root(); }),
      warnings_({.volume = volume_,
                 .findings = findings_,
                 .history = history_,
                 .preferences = prefs_,
                 .scans = scans_,
                 .growing = growing_},
                context_, desktop),
      looks_({.history = history_,
              .findings = findings_,
              .volume = volume_,
              .scans = scans_,
              .preferences = prefs_},
             context_, desktop),
      dev_(context_.tools, desktop.tasks, desktop.clock),
      cleanups_({.history = history_, .developerTools = dev_, .volume = volume_, .messages = messages_},
                desktop, cleanupContext()),
      hasFullDiskAccess_(context_.hasFullDiskAccess()) {
  connect(&volume_, &VolumeWatch::wasRead, this, [this] {
    // Another process may have changed a setting meanwhile.
    prefs_.refresh();
    Q_EMIT statusChanged();
    if (prefs_.hasStarted() && !growing_.isSeen()) growing_.refresh();
  });
  // The figure of the free space keeps up with what is shown to grow.
  connect(&growing_, &GrowthNow::changed, this, [this] {
    if (growing_.isSeen()) volume_.refresh();
  });
  connect(&volume_, &VolumeWatch::volumesWereRead, this, [this] {
    recordFreeSpace();
    warnIfDue();
  });
  // A scan takes minutes. What it shows of the free space and what the summary shows are of the same time.
  connect(&scans_, &ScanLifecycle::progressChanged, this, [this] {
    if (!scans_.isScanning()) volume_.refresh();
  });
  connect(&scans_, &ScanLifecycle::rootChanged, this, [this] { setFolderPath(std::nullopt); });
  connect(&shown_, &ShownScan::sourceChanged, this, [this] {
    cleanups_.dismiss();
    setFolderPath(std::nullopt);
    if (!shown_.isOfHere()) setTab(Tab::folders);
    setShowingSettings(false);
  });
  connect(&history_, &ScanHistory::changed, this, [this] {
    const SharedSnapshot& scan = history_.snapshot();
    if (folderToOpen_ && scan && scan->components(*folderToOpen_)) openFolder(std::string{*folderToOpen_});
  });
}

AppModel::~AppModel() {
  // The scan stops soon; its result is dropped.
  scans_.cancel();
}

std::optional<DeviceBackup> AppModel::oldBackup() const {
  const DeviceBackup* largest = nullptr;
  for (const DeviceBackup& backup : findings().deviceBackups) {
    const bool counts = backup.size >= oldBackupMinimum && backup.isOld(desktop_.clock.now(), oldBackupDays);
    if (counts && (largest == nullptr || backup.size > largest->size)) largest = &backup;
  }
  return largest != nullptr ? std::optional{*largest} : std::nullopt;
}

bool AppModel::isInTrash(const std::string& path) const {
  return spacemint::isInTrash(path, context_.home, context_.data);
}

void AppModel::start() {
  volume_.start();
  history_.load([this] { launchCheck(); });
  scans_.scheduleBackgroundScans();
}

void AppModel::launchCheck() {
  if (folderToOpen_) openFolder(std::string{*folderToOpen_});
  refreshTrash();
  if (!prefs_.hasStarted()) return;
  warnings_.requestAuthorization();
  if (warnings_.level() != SpaceLevel::ok && scans_.isStale(SpaceWarnings::staleAfter)) scans_.scan();
  afterLaunch_ =
      desktop_.scheduler.schedule({.identifier = "app.spacemint.launch", .interval = launchScanDelay},
                                  [this, isDue = scans_.isStale(scanInterval())](const auto& finished) {
                                    finished();
                                    afterLaunch_.reset();  // not again
                                    if (isDue && scans_.isStale(scanInterval())) return scans_.scan();
                                    scans_.record();
                                  });
}

// The home folder may be on a network file system, so the file is written on another thread.
void AppModel::recordFreeSpace() {
  const auto& home = volume_.status();
  const Date now = desktop_.clock.now();
  const auto hour = std::chrono::floor<std::chrono::hours>(now);
  if (!home || std::exchange(recordedHour_, hour) == hour) return;
  using Addition = std::pair<FreeSpaceRecord, FreeSpaceReading>;
  std::vector<Addition> additions{{freeSpace_, {.date = now, .free = home->free, .total = home->total}}};
  for (const VolumeReading& other : volume_.volumes()) {
    if (other.volume.holdsHome || !other.volume.canFillUp() || !other.space) continue;
    additions.emplace_back(
        FreeSpaceRecord::ofVolume(context_.state, other.volume.mountPoint()),
        FreeSpaceReading{.date = now, .free = other.space->free, .total = other.space->total});
  }
  const auto record = [additions = std::move(additions)] {
    for (const auto& [file, reading] : additions) {
      const auto added = file.add(reading);
      if (!added) log(LogLevel::info, "the free space could not be recorded: " + added.error().message);
    }
  };
  desktop_.tasks.start({.priority = Tasks::Priority::utility, .work = record, .done = [] {}});
}

void AppModel::begin() {
  if (hasFullDiskAccess_) prefs_.setScope(ScanScope::disk);
  prefs_.setHasStarted(true);
  warnings_.requestAuthorization();
  scans_.scan();
}

void AppModel::preferencesChanged() {
  scans_.scheduleBackgroundScans();
  volume_.refresh();
  const SharedSnapshot& snapshot = history_.snapshot();
  if (prefs_.hasStarted() && snapshot && snapshot->rootPath() != scans_.root()) scans_.scan();
}

void AppModel::panelWillShow() {
  const bool hadAccess = hasFullDiskAccess_;
  probeFullDiskAccess();
  if (!hadAccess && hasFullDiskAccess_ && prefs_.hasStarted()) scans_.scan();
  cleanups_.showHiddenProgress();
  refreshTrash();
  volume_.refresh();
  account_.refreshIfOld();
  looks_.look();
  warnings_.refreshNotificationStatus();
}

void AppModel::probeFullDiskAccess() {
  const bool hasAccess = context_.hasFullDiskAccess();
  if (std::exchange(hasFullDiskAccess_, hasAccess) != hasAccess) Q_EMIT hasFullDiskAccessChanged();
}

void AppModel::refreshTrash() {
  if (hasFullDiskAccess_) cleanups_.refreshTrash();
}

// A warning says what grew, so the current scan is brought up to date before it.
void AppModel::warnIfDue() {
  const bool isDue = looks_.isDue() && desktop_.scheduler.isGoodMoment();
  if (!isDue && !warnings_.isDue()) return warnings_.evaluate();
  looks_.look([this] { warnings_.evaluate(); });
}

Seconds AppModel::scanInterval() const {
  return std::chrono::hours{1} * static_cast<double>(prefs_.scanIntervalHours());
}

std::span<const Tab> AppModel::tabs() const {
  static constexpr std::array ofAnyScan{Tab::folders, Tab::files};
  return shown_.isOfHere() ? std::span<const Tab>{allTabs} : std::span<const Tab>{ofAnyScan};
}

void AppModel::setTab(Tab tab) {
  if (std::ranges::find(tabs(), tab) == tabs().end()) shown_.close();
  if (std::exchange(tab_, tab) != tab) Q_EMIT tabChanged();
}

void AppModel::followWarning() {
  shown_.close();
  const std::string& folder = warnings_.namedFolder();
  const SharedSnapshot& scan = history_.snapshot();
  const bool isInScan = !folder.empty() && scan && scan->nodeAt(folder) != nullptr;
  if (isInScan) setFolderPath(folder);
  setTab(isInScan ? Tab::folders : Tab::overview);
}

void AppModel::setFolderPath(std::optional<std::string> path) {
  if (folderPath_ == path) return;
  folderPath_ = std::move(path);
  Q_EMIT folderPathChanged();
}

void AppModel::open(const std::string& path) {
  std::error_code ignored;
  if (std::filesystem::is_directory(path, ignored)) return openFolder(path);
  folderToOpen_.reset();
  shown_.open(path);
}

void AppModel::openFolder(const std::string& path) {
  shown_.close();
  folderToOpen_ = path;
  const SharedSnapshot& scan = history_.snapshot();
  if (!history_.isLoaded() || !scan)
    return;  // the first scan will be of the home folder or of the whole disk
  folderToOpen_.reset();
  if (scan->nodeAt(path) != nullptr) return showMeasured(path);
  if (scan->components(path)) {
    return history_.remeasure({.paths = {path}, .addIfMissing = true}, [this, path] { showMeasured(path); });
  }
  const std::string name = isolatedPath(Paths::display(path, context_.home));
  messages_.show(i18n("{name} is not in the scanned folder.", {{"name", name}}),
                 MessageAction{i18n("Scan Entire Disk"), [this, path] {
                                 messages_.clear();
                                 folderToOpen_ = path;
                                 prefs_.setScope(ScanScope::disk);
                               }});
}

// A folder that is too small to be stored is shown as a part of the folder above.
void AppModel::showMeasured(const std::string& path) {
  setFolderPath(path);
  setTab(Tab::folders);
}

void AppModel::setFileSearch(std::string words) {
  if (fileSearch_ == words) return;
  fileSearch_ = std::move(words);
  Q_EMIT fileSearchChanged();
}

void AppModel::setShowingSettings(bool isShowing) {
  if (std::exchange(showingSettings_, isShowing) != isShowing) Q_EMIT showingSettingsChanged();
}

void AppModel::leaveOut(const std::string& path) {
  const SharedSnapshot before = history_.snapshot();
  const std::vector<std::string> patterns = prefs_.excludes();
  std::vector<std::string> more = patterns;
  more.push_back(Excludes::patternFor(Paths::logical(path)));
  prefs_.setExcludes(more);
  // A scan with other excludes could not be stored as one with these.
  history_.edit(path, [&](Snapshot& scan) {
    return scan.coverage.excludes == Excludes::usable(patterns, context_.home).patterns() &&
           scan.leaveOut(path, more.back());
  });
  const auto undo = [this, before, patterns, path, revision = history_.revision()] {
    messages_.clear();
    prefs_.setExcludes(patterns);
    if (history_.revision() == revision)
      history_.edit(path, [&](Snapshot& scan) { return scan = *before, true; });
  };
  const std::string name = isolatedPath(Paths::display(path, context_.home));
  messages_.show(i18n("{name} is left out of scans. The settings list what is left out.", {{"name", name}}),
                 MessageAction{i18n("Undo"), undo});
}

void AppModel::confirmEmptyTrash() {
  const Snapshot* scan = history_.snapshot().get();
  EmptyTrashRequest request{.place = trashPlace(scan, context_.home, context_.data),
                            .byFileManager = !hasFullDiskAccess_};
  const Node* node = scan != nullptr ? scan->nodeAt(request.place.folder) : nullptr;
  if (node != nullptr) request.size = node->size;
  cleanups_.ask(std::move(request));
}

CleanupContext AppModel::cleanupContext() const {
  CleanupContext context{.guard = DeletionGuard{context_.home, context_.personal},
                         .data = context_.data,
                         .locale = context_.locale,
                         .trash = &desktop_.trash,
                         .freeBytes = [&volume = desktop_.volume]() -> std::optional<Bytes> {
                           const auto reading = volume.status();
                           return reading ? std::optional{reading->free} : std::nullopt;
                         }};
  context_.tools.serve(context);
  return context;
}

}  // namespace spacemint
