#include "Spacemint/model/ScanHistory.h"

#include "core/base/Log.h"
#include "core/base/Translation.h"
#include "core/cleanup/Remeasure.h"
#include "core/history/Baseline.h"
#include "core/scan/Excludes.h"

#include <algorithm>
#include <iterator>

namespace spacemint {

struct ScanHistory::Loaded {
  std::vector<Entry> entries = {};
  std::optional<Snapshot> snapshot = {};
  /// How many newer scans could not be read.
  std::size_t skipped = 0;
};

ScanHistory::ScanHistory(SnapshotStore store, Tasks& tasks, const Clock& clock, Messages& messages)
    : store_(std::move(store)),
      tasks_(tasks),
      clock_(clock),
      messages_(messages),
      writer_(std::make_shared<SnapshotWriter>(store_)) {}

ScanHistory::Loaded ScanHistory::readNewest(const SnapshotStore& store, Date now) {
  Loaded loaded{.entries = store.entries(now)};
  for (const Entry& entry : loaded.entries) {
    auto snapshot = store.load(entry);
    if (snapshot) {
      loaded.snapshot = std::move(*snapshot);
      break;
    }
    log(LogLevel::info, "the scan in " + entry.path + " could not be read: " + snapshot.error().message);
    ++loaded.skipped;
  }
  return loaded;
}

void ScanHistory::load(std::function<void()> then) {
  tasks_.run(
      Tasks::Priority::utility, this, [store = store_, now = clock_.now()] { return readNewest(store, now); },
      [this, then = std::move(then)](Loaded newest) {
        take(std::move(newest));
        then();
        Q_EMIT loaded();
      });
}

void ScanHistory::take(Loaded loaded) {
  const bool hasSkipped = loaded.skipped > 0 && loaded.snapshot;
  setEntries(std::move(loaded.entries));
  if (!snapshot_ && loaded.snapshot) {
    setSnapshot(std::move(*loaded.snapshot));
    assignBaseline(defaultBaseline(entries_));
    Q_EMIT changed();
  }
  if (hasSkipped) messages_.show(i18n("The latest scan couldn't be read, so an earlier one is shown."));
  isLoaded_ = true;
}

void ScanHistory::update(Snapshot snapshot) {
  updatedAt_ = clock_.now();
  snapshot.date = snapshot_->date;
  snapshot.duration = snapshot_->duration;
  setSnapshot(std::move(snapshot));
  Q_EMIT changed();
}

void ScanHistory::replace(Snapshot snapshot, std::vector<Entry> entries) {
  updatedAt_.reset();
  setSnapshot(std::move(snapshot));
  setEntries(std::move(entries));
  const auto earlier = entries_.empty() ? entries_.begin() : entries_.begin() + 1;
  const bool isKept = baselineEntry_ && std::find(earlier, entries_.end(), *baselineEntry_) != entries_.end();
  if (!isKept) {
    isBaselineChosen_ = false;
    assignBaseline(defaultBaseline(entries_));
  }
  Q_EMIT changed();
}

void ScanHistory::edit(const std::string& path, const Edit& edit) {
  if (!snapshot_) return;
  Snapshot copy = *snapshot_;
  if (!edit(copy)) return;
  Q_EMIT edited(path);
  setSnapshot(std::move(copy));
  save();
  Q_EMIT changed();
}

void ScanHistory::remeasure(Remeasuring request, std::function<void()> then) {
  if (!snapshot_) return then();
  const Excludes excludes = Excludes::usable(snapshot_->coverage.excludes, "");
  const auto isKnown = [this](const std::string& path) {
    return snapshot_->nodeAt(path) != nullptr ||
           snapshot_->coverage.excludedBelow(snapshot_->resolve(path)).items > 0;
  };
  std::erase_if(request.paths, [&](const std::string& path) {
    return excludes.leavesOutBelow(snapshot_->rootPath(), snapshot_->resolve(path), true) ||
           (!request.addIfMissing && !isKnown(path));
  });
  if (request.paths.empty()) return then();
  for (std::string& path : request.paths) path = highestMissing(*snapshot_, std::move(path));
  const auto measure = [paths = std::move(request.paths), scan = snapshot_] {
    std::vector<Measured> all;
    for (const std::string& path : paths)
      all.push_back(measureAgain(path, scan->minNodeSize, scan->coverage.excludes));
    return all;
  };
  const auto put = [this, assumeEmptied = request.assumeEmptied,
                    then = std::move(then)](std::vector<Measured> all) {
    for (Measured& each : all) {
      const std::string path = each.path;
      edit(path, [&](Snapshot& scan) { return putInto(scan, std::move(each), assumeEmptied); });
    }
    then();
  };
  tasks_.run(Tasks::Priority::userInitiated, this, measure, put);
}

void ScanHistory::setBaselineEntry(std::optional<Entry> entry) {
  isBaselineChosen_ = true;
  if (assignBaseline(std::move(entry))) Q_EMIT changed();
}

std::vector<ScanHistory::Entry> ScanHistory::possibleBaselines() const {
  if (!baselineEntry_) return {};
  std::vector<Entry> possible{*baselineEntry_};
  if (isBaselineChosen_) return possible;
  std::ranges::copy_if(baselineCandidates(entries_), std::back_inserter(possible),
                       [this](const Entry& entry) { return entry != *baselineEntry_; });
  return possible;
}

void ScanHistory::setSnapshot(Snapshot snapshot) {
  snapshot_ = std::make_shared<const Snapshot>(std::move(snapshot));
  ++revision_;
  Q_EMIT snapshotChanged();
}

void ScanHistory::setEntries(std::vector<Entry> entries) {
  if (entries_ == entries) return;
  entries_ = std::move(entries);
  Q_EMIT entriesChanged();
}

bool ScanHistory::assignBaseline(std::optional<Entry> entry) {
  if (baselineEntry_ == entry) return false;
  baselineEntry_ = std::move(entry);
  Q_EMIT baselineEntryChanged();
  return true;
}

void ScanHistory::save() {
  if (snapshot_->measuredPart) return;  // a part is never stored
  tasks_.run(
      Tasks::Priority::utility, this,
      [writer = writer_, snapshot = snapshot_, revision = revision_] {
        return writer->save(*snapshot, revision);
      },
      [this](const std::expected<bool, Error>& saved) {
        if (!saved)
          messages_.show(
              i18n("Couldn't save changes to the scan: {reason}", {{"reason", saved.error().message}}));
      });
}

}  // namespace spacemint
