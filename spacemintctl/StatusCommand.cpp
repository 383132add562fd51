#include "spacemintctl/StatusCommand.h"

#include "core/base/ByteFormat.h"
#include "core/base/RelativeTime.h"
#include "core/base/Translation.h"
#include "core/base/Unicode.h"
#include "core/history/FreeSpaceRecord.h"
#include "core/host/UserFolders.h"
#include "core/host/VolumeTable.h"
#include "core/scan/ScanPlan.h"
#include "core/settings/Settings.h"
#include "core/volume/Permissions.h"
#include "core/volume/Supply.h"
#include "core/volume/VolumeStatus.h"
#include "core/wording/SupplyText.h"
#include "spacemintctl/Console.h"
#include "spacemintctl/FreeSpaceText.h"
#include "spacemintctl/ScanCommand.h"
#include "spacemintctl/SettingsCommand.h"
#include "spacemintctl/StoredScan.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <iterator>

namespace spacemint::ctl {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::chrono::seconds journalTimeout{5};

// A fact: key and value in JSON, and title and text of a row. A fact without a title is only in the JSON.
struct Fact {
  std::string key;
  Json value;
  std::string title;
  std::string text;
};
using Facts = std::vector<Fact>;

std::string sizeText(Bytes size) {
  return ByteFormat::string(size, userLocale());
}

std::string usedText(const Space& space) {
  return sizeText(space.used) + " (" + percentage(space.used, space.used + space.free) + ")";
}

// "ext4" keeps a reserve for the system, Btrfs sets space aside for its own records.
Fact heldBackFact(const Space& space) {
  Fact fact{"heldBack", space.heldBack, "", ""};
  if (space.heldBack > 0) {
    fact.title = i18n("Reserved");
    fact.text = sizeText(space.heldBack);
  }
  return fact;
}

Json jsonOf(const VolumeReading& reading) {
  const auto& [volume, space] = reading;
  Json mountPoints = Json::array();
  for (const VolumePlace& place : volume.places) {
    mountPoints.push_back(withInvalidUtf8Replaced(place.mountPoint));
  }
  Json object{{"name", withInvalidUtf8Replaced(volume.name)},
              {"mountPoints", std::move(mountPoints)},
              {"fileSystem", withInvalidUtf8Replaced(volume.fileSystem)},
              {"holdsHome", volume.holdsHome},
              {"isWritable", volume.isWritable},
              {"isRemovable", volume.isRemovable}};
  if (!space) return object;
  object["total"] = space->total;
  object["used"] = space->used;
  object["heldBack"] = space->heldBack;
  object["free"] = space->free;
  if (space->files) object["files"] = {{"total", space->files->total}, {"free", space->files->free}};
  return object;
}

std::string remarksOn(const VolumeReading& reading) {
  const auto& [volume, space] = reading;
  std::string remarks = volume.fileSystem;
  if (!volume.isWritable) remarks += ", " + i18n("read-only");
  if (volume.isRemovable) remarks += ", " + i18n("removable");
  if (space && space->heldBack > 0)
    remarks += ", " + i18n("{size} reserved", {{"size", sizeText(space->heldBack)}});
  if (space && space->files) {
    const std::int64_t inUse = space->files->total - space->files->free;
    remarks +=
        ", " + i18n("{percent} of its files in use", {{"percent", percentage(inUse, space->files->total)}});
  }
  return remarks;
}

std::string mountPointsOf(const Volume& volume) {
  std::string text;
  for (const VolumePlace& place : volume.places)
    text += (text.empty() ? "" : ", ") + printable(place.mountPoint);
  return text;
}

std::string volumeTable(const std::vector<VolumeReading>& readings) {
  Table table{0};
  for (const VolumeReading& reading : readings) {
    const auto& [volume, space] = reading;
    const std::string free = space ? i18n("{free} free of {total}", {{"free", sizeText(space->free)},
                                                                     {"total", sizeText(space->total)}})
                                   : i18n("does not answer");
    table.add({printable(volume.name), free, space ? i18n("{used} used", {{"used", usedText(*space)}}) : "",
               mountPointsOf(volume), printable(remarksOn(reading))});
  }
  return table.text();
}

// What runs low, except the space of the home folder's volume, which has a row of its own.
std::string lowText(const std::vector<VolumeReading>& readings) {
  const std::int64_t thresholdGB = storedSettings().thresholdGB;
  std::string text;
  for (const VolumeReading& reading : readings) {
    for (const Supply& supply : suppliesOf(reading, thresholdGB)) {
      if (supply.level() != SpaceLevel::ok)
        text += printable(SupplyText::sentence(supply, userLocale())) + '\n';
    }
  }
  return text.empty() ? "" : '\n' + text;
}

// The figures of df: the used space does not include the reserve.
Facts volumeFacts(const VolumeStatus& volume, const std::string& mountPoint) {
  const std::string locale = userLocale();
  const Space space = readSpace(mountPoint)
                          .value_or(Space{.total = volume.total, .used = volume.used(), .free = volume.free});
  return {{"name", withInvalidUtf8Replaced(volume.name), "", ""},
          {"mountPoint", withInvalidUtf8Replaced(mountPoint), "", ""},
          {"total", volume.total, i18n("Total"), ByteFormat::string(volume.total, locale)},
          {"free", volume.free, i18n("Free"), ByteFormat::string(volume.free, locale)},
          {"used", space.used, i18n("Used"), usedText(space)},
          heldBackFact(space),
          {"usedFraction", volume.usedFraction(), "", ""},
          {"fullDiskAccess", Permissions::hasFullDiskAccess(), "", ""}};
}

Fact levelFact(const VolumeStatus& volume, std::int64_t thresholdGB) {
  constexpr const char* names[] = {i18nMark("ok"), i18nMark("low"), i18nMark("critical")};
  const char* name = names[std::to_underlying(spaceLevel(volume.free, thresholdGB))];
  return {"level", name, i18n("Level"),
          i18n("{level}, warns below {size}",
               {{"level", i18n(name)},
                {"size", ByteFormat::string(warningThreshold(thresholdGB), userLocale())}})};
}

Fact lastScanFact(const std::optional<Snapshot>& last, Date now) {
  if (!last) return {"lastScan", nullptr, i18n("Last scan"), i18nc("scan", "none")};
  const std::string locale = userLocale();
  return {"lastScan",
          Json{{"date", universalTime(last->date)}, {"root", withInvalidUtf8Replaced(last->rootPath())}},
          i18n("Last scan"),
          i18np("{date} ({age}), {path}, {size} in {count} file",
                "{date} ({age}), {path}, {size} in {count} files", last->fileCount,
                {{"date", localTime(last->date)},
                 {"age", RelativeTime::string(last->date, now, locale)},
                 {"path", printable(Paths::display(last->rootPath(), UserFolders::home()))},
                 {"size", ByteFormat::string(last->root.size, locale)},
                 {"count", groupedNumber(last->fileCount, locale)}})};
}

Fact nextScanFact(const ScanPlan& plan) {
  if (plan.whyFull.empty()) {
    return {"nextScan", Json{{"kind", "rescan"}}, i18n("Next scan"),
            i18n("visits only folders that changed")};
  }
  return {"nextScan", Json{{"kind", "full"}, {"because", plan.whyFull}}, i18n("Next scan"),
          i18n("a full scan, because {reason}", {{"reason", i18n(plan.whyFull.c_str())}})};
}

Fact recorderFact(EventJournal& journal, const std::string& root) {
  const std::uint64_t now = journal.currentEventID({.root = root, .timeout = journalTimeout});
  const auto answer =
      journal.changes({.root = root, .since = std::max<std::uint64_t>(now, 1), .timeout = journalTimeout});
  if (answer) return {"recorder", Json{{"answers", true}}, i18n("Recorder"), i18n("answers")};
  const std::string reason{textOf(answer.error())};
  return {"recorder", Json{{"answers", false}, {"because", reason}}, i18n("Recorder"),
          i18n("does not answer, because {reason}", {{"reason", i18n(reason.c_str())}})};
}

// Only the application knows if notifications work; this program can only tell that they cannot work without
// a session bus.
Fact notificationFact() {
  const bool hasBus =
      UserFolders::environment("DBUS_SESSION_BUS_ADDRESS").has_value() || !UserFolders::runtime().empty();
  return {"mayNotify", hasBus, i18n("Notifications"),
          i18n(hasBus ? i18nMark("the application logs the desktop's replies (SPACEMINT_LOG=info)")
                      : i18nMark("none are shown, because this session has no message bus"))};
}

Facts verboseFacts(const VolumeStatus& volume) {
  const StoredSettings settings = storedSettings();
  const std::string root = settings.scope == ScanScope::disk ? std::string{wholeDisk} : UserFolders::home();
  const Date now = currentTime();
  auto newest = storedScan(SnapshotStore::standard(), "");
  std::optional<Snapshot> last;
  if (newest) last = std::move(*newest);
  const auto journal = hostEventJournal();
  Facts facts{levelFact(volume, settings.thresholdGB), lastScanFact(last, now)};
  const ScanPlan plan =
      ScanPlan::make(*journal, {.root = root,
                                .minNodeSize = ScanOptions{}.minSize,
                                .now = now,
                                .earlier = std::move(last),
                                .timeout = journalTimeout,
                                .excludes = Excludes::usable(settings.excludes, UserFolders::home())});
  facts.push_back(nextScanFact(plan));
  facts.push_back(recorderFact(*journal, root));
  facts.push_back(notificationFact());
  return facts;
}

Json jsonOf(const std::vector<FreeSpaceReading>& readings) {
  Json list = Json::array();
  for (const FreeSpaceReading& each : readings)
    list.push_back({{"date", universalTime(each.date)}, {"free", each.free}, {"total", each.total}});
  return list;
}

std::vector<FreeSpaceReading> historyOf(const std::string& mountPoint) {
  return FreeSpaceRecord::ofVolume(UserFolders::state(), mountPoint).readings(currentTime());
}

std::string jsonOf(const Facts& facts) {
  Json object;
  for (const Fact& fact : facts) object[fact.key] = fact.value;
  return object.dump() + '\n';
}

// The history of the home's volume, and of each other volume that has one.
std::string historyText(const VolumeStatus& home, const std::string& mountPoint,
                        const std::vector<VolumeReading>& readings) {
  const auto entry = [](const std::string& name, const std::vector<FreeSpaceReading>& history) {
    return '\n' + printable(name) + '\n' + freeSpaceText(history, userLocale());
  };
  std::string others;
  for (const VolumeReading& reading : readings) {
    const auto history = historyOf(reading.volume.mountPoint());
    if (!reading.volume.holdsHome && !history.empty()) others += entry(reading.volume.name, history);
  }
  const auto history = historyOf(mountPoint);
  return others.empty() ? '\n' + freeSpaceText(history, userLocale()) : entry(home.name, history) + others;
}

std::string textOf(const Facts& facts, const VolumeStatus& volume, const std::string& mountPoint) {
  Table table{0};
  for (const Fact& fact : facts) {
    if (!fact.title.empty()) table.add({fact.title, fact.text});
  }
  std::string title = printable(volume.name);
  if (volume.name != mountPoint) title += " (" + printable(mountPoint) + ")";
  std::string text = title + '\n' + table.text();
  if (!Permissions::hasFullDiskAccess()) {
    text += i18n("This program runs in a sandbox and cannot see all of your files.") + "\n";
  }
  return text;
}

}  // namespace

int runStatus(const StatusOptions& options) {
  const std::string mountPoint = startupVolume();
  const auto volume = VolumeStatus::current(mountPoint);
  if (!volume) {
    complain(i18n("{path}: the volume's free space could not be read", {{"path", printable(mountPoint)}}));
    return failed;
  }
  Facts facts = volumeFacts(*volume, mountPoint);
  if (options.verbose) std::ranges::move(verboseFacts(*volume), std::back_inserter(facts));
  const auto readings = readVolumes();
  if (options.json) {
    Json volumes = Json::array();
    for (const VolumeReading& reading : readings) {
      volumes.push_back(jsonOf(reading));
      const std::string& place = reading.volume.holdsHome ? mountPoint : reading.volume.mountPoint();
      if (options.history) volumes.back()["history"] = jsonOf(historyOf(place));
    }
    facts.push_back({"volumes", std::move(volumes), "", ""});
    if (options.history) facts.push_back({"history", jsonOf(historyOf(mountPoint)), "", ""});
    return print(jsonOf(facts)) ? done : failed;
  }
  std::string text = textOf(facts, *volume, mountPoint);
  if (readings.size() > 1) text += "\n" + i18n("Volumes") + "\n" + volumeTable(readings);
  text += lowText(readings);
  if (options.history) text += historyText(*volume, mountPoint, readings);
  return print(text) ? done : failed;
}

}  // namespace spacemint::ctl
