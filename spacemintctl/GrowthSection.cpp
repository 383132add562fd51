#include "core/analysis/Changes.h"
#include "core/base/RelativeTime.h"
#include "core/history/Baseline.h"
#include "core/wording/FindingText.h"
#include "spacemintctl/Console.h"
#include "spacemintctl/Section.h"
#include "spacemintctl/StoredScan.h"

namespace spacemint::ctl {

namespace {

bool isOfTheSameFolder(const Snapshot& a, const Snapshot& b) {
  return a.rootPath() == b.rootPath();
}

// The earlier scan to compare with; absent if there is none.
using Baseline = std::expected<std::optional<Snapshot>, Error>;

// The best earlier scan of the same folder.
Baseline usualBaseline(const Snapshot& current) {
  const SnapshotStore store = SnapshotStore::ofRoot(current.rootPath());
  auto history = store.entries();
  std::erase_if(history, [&](const SnapshotStore::Entry& entry) {
    return entry.date > std::chrono::floor<std::chrono::seconds>(current.date);
  });
  for (const auto& entry : baselineCandidates(history)) {
    auto scan = store.load(entry);
    if (scan && isOfTheSameFolder(*scan, current)) return std::move(*scan);
  }
  return std::nullopt;
}

Baseline namedBaseline(const Scene& scene) {
  auto named = storedScan(SnapshotStore::ofRoot(scene.snapshot.rootPath()), scene.since);
  if (!named) return std::unexpected(std::move(named).error());
  if (isOfTheSameFolder(*named, scene.snapshot)) return std::move(*named);
  return std::unexpected(
      Error{.domain = "history",
            .message = "the scan of \"" + scene.since + "\" is of another folder, " + named->rootPath()});
}

Json jsonOf(const Growth& growth) {
  return {{"path", jsonText(growth.path)},
          {"delta", growth.delta},
          {"size", growth.size},
          {"isDirectory", growth.isDirectory},
          {"isNew", growth.isNew}};
}

Json jsonOf(const Snapshot& scan) {
  return {{"date", universalTime(scan.date)},
          {"root", jsonText(scan.rootPath())},
          {"size", scan.root.size},
          {"volumeFree", scan.volumeFree}};
}

std::string growthText(const Snapshot& baseline, const std::vector<Growth>& grown, const Scene& scene) {
  const auto& [home, locale] = scene.wording;
  const auto change = Changes::spaceChange(baseline, scene.snapshot, home);
  const std::string text = "Since " + localTime(baseline.date) + " (" +
                     RelativeTime::age(baseline.date, scene.now, locale) + ")\n" +
                     FindingText::freeChange(change.value_or(SpaceChange{}), home, locale) + '\n';
  if (grown.empty()) return text + FindingText::nothingGrew(scene.minimum, locale) + '\n';
  Table table{2};
  for (const Growth& each : grown) {
    table.add({"+" + shownSize(each.delta, scene), each.isNew ? "new" : "of " + shownSize(each.size, scene),
               shownPath(each.path, scene) + (each.isDirectory ? "/" : "")});
  }
  return text + table.text();
}

}  // namespace

std::expected<Findings, Error> growthFindings(const Scene& scene) {
  auto baseline = scene.since.empty() ? usualBaseline(scene.snapshot) : namedBaseline(scene);
  if (!baseline) return std::unexpected(baseline.error());
  const auto& earlier = *baseline;
  if (!earlier) {
    return Findings{.text = std::string{FindingText::nothingToCompare} + '\n',
                    .json = {{"from", nullptr}, {"to", jsonOf(scene.snapshot)}, {"growth", Json::array()}}};
  }
  const auto grown =
      Changes::growth({.from = *earlier, .to = scene.snapshot, .minimum = scene.minimum, .limit = scene.top});
  Json list = Json::array();
  for (const Growth& each : grown) list.push_back(jsonOf(each));
  return Findings{
      .text = growthText(*earlier, grown, scene),
      .json = {{"from", jsonOf(*earlier)}, {"to", jsonOf(scene.snapshot)}, {"growth", std::move(list)}}};
}

}  // namespace spacemint::ctl
