#include "Spacemint/views/ChangeRows.h"

#include "Spacemint/views/FolderText.h"
#include "Spacemint/views/Icons.h"
#include "Spacemint/views/ShownText.h"
#include "core/base/ByteFormat.h"
#include "core/base/Isolate.h"
#include "core/base/TextList.h"
#include "core/base/Translation.h"
#include "core/host/FolderListing.h"
#include "core/wording/FindingText.h"
#include "core/wording/PictureText.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace spacemint {

namespace {

constexpr Bytes smallestElsewhere = 100'000'000;
constexpr std::string_view shrunkId = "shrunk or gone";

}  // namespace

ChangeRows::ChangeRows(const UiHost& host, std::function<void()> changed)
    : host_(host),
      changed_(std::move(changed)) {}

void ChangeRows::update() {
  const Findings& findings = host_.model.findings();
  tree_ = findings.changes ? growthTree(*findings.changes) : GrowthTree{};
  Bytes sum = tree_.smallerDelta;
  for (const GrowthTree& child : tree_.children) sum = saturatingAdd(sum, child.delta);
  const auto& space = findings.spaceChange;
  const Bytes drop = space ? saturatingSubtract(space->freeBefore, space->freeNow) : 0;
  whole_ = std::max({sum, drop, Bytes{1}});
}

bool ChangeRows::isEmpty() const {
  return host_.model.findings().growth.empty() && host_.model.findings().shrinkage.empty();
}

std::vector<ListItem> ChangeRows::items(std::size_t limit) {
  Items items;
  if (!host_.model.findings().changes) return items;
  if (!isEmpty()) {
    ListItem root = rootItem();
    makeUnfolding(root, true);
    const bool isOpen = *root.isUnfolded;
    items.push_back(std::move(root));
    if (isOpen) {
      addGrowth(tree_, 1, true, limit, items);
      addShrinkage(items);
    }
  }
  addElsewhere(items);
  return items;
}

std::string ChangeRows::signedSize(Bytes delta) const {
  return delta < 0 ? FindingText::lost(saturatingSubtract(0, delta), host_.locale)
                   : "+" + ByteFormat::string(delta, host_.locale);
}

double ChangeRows::share(Bytes delta) const {
  return std::clamp(static_cast<double>(delta) / static_cast<double>(whole_), 0.0, 1.0);
}

bool ChangeRows::isOpen(const std::string& id, bool isOpenAtFirst) const {
  const auto chosen = isOpen_.find(id);
  return chosen != isOpen_.end() ? chosen->second : isOpenAtFirst;
}

void ChangeRows::makeUnfolding(ListItem& item, bool isOpenAtFirst) {
  item.isUnfolded = isOpen(item.id, isOpenAtFirst);
  item.onUnfold = [this, id = item.id, isUnfolded = *item.isUnfolded] {
    isOpen_[id] = !isUnfolded;
    changed_();
  };
}

// The scanned folder, with its part of what the disk lost.
ListItem ChangeRows::rootItem() const {
  const Findings& findings = host_.model.findings();
  ListItem item{.id = tree_.path,
                .path = tree_.path,
                .size = tree_.size,
                .isDirectory = true,
                .title = FolderText::title(tree_.path, tree_.path, host_.home),
                .subtitle = tree_.delta > 0
                                ? FindingText::perDay(tree_.delta, findings.comparedTime, host_.locale)
                                : "",
                .sizeText = signedSize(tree_.delta),
                .symbol = "folder",
                .fraction = share(std::max<Bytes>(0, tree_.delta)),
                .hasShrunk = tree_.delta < 0};
  const auto& space = findings.spaceChange;
  const Bytes drop = space ? saturatingSubtract(space->freeBefore, space->freeNow) : 0;
  if (tree_.delta > 0 && drop >= tree_.delta) item.tag = PictureText::percent(tree_.delta, drop);
  return item;
}

ListItem ChangeRows::itemOf(const GrowthTree& growth, int depth) const {
  std::string title;
  for (const std::string& name : growth.names) title += (title.empty() ? "" : " / ") + name;
  return {.id = growth.path,
          .path = growth.path,
          .size = growth.size,
          .isDirectory = growth.isDirectory,
          .title = std::move(title),
          .sizeText = signedSize(growth.delta),
          .symbol = std::string{Icons::symbol(growth.names.back(), growth.isDirectory)},
          .fraction = share(growth.delta),
          .tag = growth.isNew ? PictureText::isNew() : "",
          .depth = depth,
          .canTrash = true};
}

void ChangeRows::addGrowth(const GrowthTree& growth, int depth, bool opensLargest, std::size_t limit,
                           Items& items) {
  for (std::size_t i = 0; i < std::min(limit, growth.children.size()); ++i) {
    const GrowthTree& child = growth.children[i];
    ListItem item = itemOf(child, depth);
    const bool unfolds = !child.children.empty();
    if (unfolds) makeUnfolding(item, opensLargest && i == 0);
    const bool isOpen = item.isUnfolded.value_or(false);
    items.push_back(std::move(item));
    if (isOpen) addGrowth(child, depth + 1, false, std::numeric_limits<std::size_t>::max(), items);
  }
  if (growth.smaller == 0 || limit <= growth.children.size()) return;
  const auto number = static_cast<std::int64_t>(growth.smaller);
  items.push_back({.id = growth.path + "/",
                   .title = i18np("{number} smaller thing", "{number} smaller things", number,
                                  {{"number", numberText(number)}}),
                   .sizeText = signedSize(growth.smallerDelta),
                   .symbol = "doc",
                   .fraction = share(growth.smallerDelta),
                   .depth = depth});
}

// A person knows the Trash by its name, and not by its path.
std::string ChangeRows::placeOf(const Shrinkage& shrunk) const {
  if (!host_.model.isInTrash(shrunk.path)) return isolatedPath(Paths::display(shrunk.path, host_.home));
  return shrunk.size > 0 ? i18n("In the Trash") : i18n("Was in the Trash");
}

void ChangeRows::addShrinkage(Items& items) {
  const auto& shrinkage = host_.model.findings().shrinkage;
  if (shrinkage.empty()) return;
  Bytes sum = 0;
  for (const Shrinkage& each : shrinkage) sum = saturatingAdd(sum, each.delta);
  const auto number = static_cast<std::int64_t>(shrinkage.size());
  ListItem all{.id = std::string{shrunkId},
               .title = i18n(FindingText::shrunkTitle),
               .sizeText = FindingText::lost(sum, host_.locale),
               .symbol = "trash.slash",
               .fraction = share(sum),
               .hasShrunk = true,
               .tag = i18np("{number} thing", "{number} things", number, {{"number", numberText(number)}}),
               .depth = 1};
  makeUnfolding(all, false);
  const bool isOpen = *all.isUnfolded;
  items.push_back(std::move(all));
  if (!isOpen) return;
  const SharedSnapshot& snapshot = host_.model.history().snapshot();
  const Bytes minNodeSize = snapshot ? snapshot->minNodeSize : 0;
  for (const Shrinkage& each : shrinkage) {
    const std::string name = Paths::lastComponent(each.path);
    items.push_back({.id = "shrunk " + each.path,
                     .path = each.size > 0 ? each.path : "",
                     .size = each.size,
                     .isDirectory = each.isDirectory,
                     .title = name,
                     .subtitle = facts({FindingText::left(each, minNodeSize, host_.locale), placeOf(each)}),
                     .sizeText = FindingText::lost(each.delta, host_.locale),
                     .symbol = std::string{Icons::symbol(name, each.isDirectory)},
                     .hasShrunk = true,
                     .depth = 2});
  }
}

void ChangeRows::addElsewhere(Items& items) const {
  const auto& space = host_.model.findings().spaceChange;
  const Bytes elsewhere = space ? space->elsewhere().value_or(0) : 0;
  if (elsewhere < smallestElsewhere && elsewhere > -smallestElsewhere) return;
  const bool isDisk = space->root == wholeDisk;
  ListItem item{.id = "elsewhere",
                .title = isDisk ? i18n("Not in files") : i18n("Elsewhere on the disk"),
                .subtitle = isDisk ? "" : i18n("Not in this scan"),
                .sizeText = signedSize(elsewhere),
                .symbol = isDisk ? "unexplained" : "externaldrive",
                .fraction = share(std::max<Bytes>(0, elsewhere)),
                .hasShrunk = elsewhere < 0};
  if (!isDisk && host_.model.prefs().scope() == ScanScope::home) {
    item.buttonTitle = i18n("Scan entire disk");
    item.onButton = [&model = host_.model] {
      model.prefs().setScope(ScanScope::disk);
      model.scans().scan();
    };
  }
  items.push_back(std::move(item));
}

}  // namespace spacemint
