#include "core/analysis/Changes.h"
#include "core/base/RelativeTime.h"
#include "core/base/Translation.h"
#include "core/host/FileStamp.h"
#include "core/wording/FindingText.h"
#include "spacemintctl/Console.h"
#include "spacemintctl/Section.h"
#include "spacemintctl/StoredScan.h"

namespace spacemint::ctl {

namespace {

using Baseline = std::expected<EarlierScans, Error>;

Baseline namedBaseline(const Scene& scene) {
  auto named = storedScan(SnapshotStore::ofRoot(scene.snapshot.rootPath()), scene.since);
  if (!named) return std::unexpected(std::move(named).error());
  const auto refused = [](std::string reason) {
    return std::unexpected(Error{.domain = "history", .message = std::move(reason)});
  };
  if (named->rootPath() != scene.snapshot.rootPath()) {
    return refused(i18n("the scan of \"{date}\" is of another folder, {path}",
                        {{"date", scene.since}, {"path", named->rootPath()}}));
  }
  if (named->date > scene.snapshot.date) {
    return refused(
        i18n("the scan of \"{date}\" is later than the one to compare with it", {{"date", scene.since}}));
  }
  if (named->coverage.excludes != scene.snapshot.coverage.excludes) {
    return refused(i18n("the scan of \"{date}\" left out other files and folders", {{"date", scene.since}}));
  }
  return EarlierScans{.usual = std::move(*named)};
}

Baseline earlierScans(const Scene& scene) {
  return scene.since.empty() ? Baseline{usualBaseline(scene.snapshot)} : namedBaseline(scene);
}

// What a comparison of two scans finds.
struct Comparison {
  const Snapshot& from;
  const Snapshot& to;
  std::vector<Growth> growth;
  std::vector<Shrinkage> shrinkage;

  std::chrono::microseconds between() const { return timeBetween(from.date, to.date); }
};

Json jsonOf(const Growth& growth) {
  Json inside = Json::array();
  for (const Growth& each : growth.inside) inside.push_back(jsonOf(each));
  return {{"path", jsonText(growth.path)},     {"delta", growth.delta}, {"size", growth.size},
          {"isDirectory", growth.isDirectory}, {"isNew", growth.isNew}, {"inside", std::move(inside)}};
}

Json jsonOf(const Shrinkage& shrinkage) {
  return {{"path", jsonText(shrinkage.path)},
          {"delta", -shrinkage.delta},
          {"size", shrinkage.size},
          {"isDirectory", shrinkage.isDirectory},
          {"isGone", shrinkage.isGone}};
}

Json jsonOf(const Snapshot& scan) {
  return {{"date", universalTime(scan.date)},
          {"root", jsonText(scan.rootPath())},
          {"size", scan.root.size},
          {"volumeFree", scan.volumeFree}};
}

template <class Change>
Json jsonOf(const std::vector<Change>& changes) {
  Json list = Json::array();
  for (const Change& each : changes) list.push_back(jsonOf(each));
  return list;
}

// An item in a folder is shown below it, by its path from there on.
std::vector<std::string> rowOf(const Growth& growth, const Comparison& comparison, const Scene& scene,
                               const std::string& path) {
  const std::string perDay = FindingText::perDay(growth.delta, comparison.between(), scene.wording.locale);
  std::vector<std::string> row{"+" + shownSize(growth.delta, scene)};
  if (!perDay.empty()) row.push_back(perDay);
  row.push_back(growth.isNew ? i18n("new") : i18n("of {size}", {{"size", shownSize(growth.size, scene)}}));
  row.push_back(path + (growth.isDirectory ? "/" : ""));
  return row;
}

std::string growthTable(const Comparison& comparison, const Scene& scene) {
  Table table{comparison.growth.empty() ? 0
                                        : rowOf(comparison.growth.front(), comparison, scene, "").size() - 1};
  for (const Growth& each : comparison.growth) {
    table.add(rowOf(each, comparison, scene, shownPath(each.path, scene)));
    for (const Growth& part : each.inside) {
      const std::string below = printable(part.path.substr(Paths::join(each.path, "").size()));
      table.add(rowOf(part, comparison, scene, "  … " + below));
    }
  }
  return table.text();
}

std::string shrinkageTable(const Comparison& comparison, const Scene& scene) {
  Table table{2};
  for (const Shrinkage& each : comparison.shrinkage) {
    table.add({FindingText::lost(each.delta, scene.wording.locale),
               FindingText::left(each, comparison.to.minNodeSize, scene.wording.locale),
               shownPath(each.path, scene) + (each.isDirectory ? "/" : "")});
  }
  return table.text();
}

std::string comparisonText(const Comparison& comparison, const Scene& scene) {
  const auto& [home, locale] = scene.wording;
  std::string text =
      i18n(scene.isNewest ? i18nMark("Since {from} ({age})") : i18nMark("Since {from} ({age}) until {to}"),
           {{"from", localTime(comparison.from.date)},
            {"age", RelativeTime::age(comparison.from.date, scene.now, locale)},
            {"to", localTime(comparison.to.date)}});
  const auto change = Changes::spaceChange(comparison.from, comparison.to, home);
  text += '\n' + FindingText::freeChange(change.value_or(SpaceChange{}), home, locale) + '\n';
  text += comparison.growth.empty() ? FindingText::nothingGrew(scene.minimum, locale) + '\n'
                                    : growthTable(comparison, scene);
  if (comparison.shrinkage.empty()) return text;
  return text + i18n(FindingText::shrunkTitle) + '\n' + shrinkageTable(comparison, scene);
}

Json jsonOf(const Comparison& comparison) {
  return {{"from", jsonOf(comparison.from)},
          {"to", jsonOf(comparison.to)},
          {"growth", jsonOf(comparison.growth)},
          {"shrinkage", jsonOf(comparison.shrinkage)}};
}

}  // namespace

std::expected<std::optional<Snapshot>, Error> baselineOf(const Scene& scene) {
  auto scans = earlierScans(scene);
  if (!scans) return std::unexpected(std::move(scans).error());
  return std::move(scans->usual);
}

std::expected<Findings, Error> growthFindings(const Scene& scene) {
  const auto baseline = earlierScans(scene);
  if (!baseline) return std::unexpected(baseline.error());
  const auto& earlier = baseline->usual;
  if (!earlier) {
    const std::string reason = baseline->leftOutOthers
                                   ? i18n("The earlier scans left out other files and folders.")
                                   : i18n(FindingText::nothingToCompare);
    return Findings{.text = reason + '\n',
                    .json = {{"from", nullptr},
                             {"to", jsonOf(scene.snapshot)},
                             {"growth", Json::array()},
                             {"shrinkage", Json::array()}}};
  }
  const Changes::GrowthArguments arguments{
      .from = *earlier, .to = scene.snapshot, .minimum = scene.minimum, .limit = scene.top};
  const Comparison comparison{.from = *earlier,
                              .to = scene.snapshot,
                              .growth = Changes::growth(arguments),
                              .shrinkage = Changes::shrinkage(arguments, mayExist)};
  return Findings{.text = comparisonText(comparison, scene), .json = jsonOf(comparison)};
}

}  // namespace spacemint::ctl
