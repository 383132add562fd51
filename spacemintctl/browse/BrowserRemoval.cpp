#include "core/base/AsciiText.h"
#include "core/base/Translation.h"
#include "core/cleanup/CleanupText.h"
#include "core/host/FileStamp.h"
#include "spacemintctl/CleanCommand.h"
#include "spacemintctl/browse/BrowseText.h"
#include "spacemintctl/browse/Browser.h"

#include <algorithm>

namespace spacemint::ctl {

namespace {

bool movesToTrash(const CleanupPlan& plan) {
  return plan.steps.front().kind == CleanupStep::Kind::moveToTrash;
}

}  // namespace

// In a box: the reasons are too long for the last line of a small screen.
void Browser::refuse(std::vector<std::string> why) {
  std::vector<Paragraph> text;
  for (std::string& each : why) text.push_back({std::move(each)});
  ask(box(i18n("Nothing was removed"), std::move(text), i18n("any key: back")), {});
}

bool Browser::refusesRemoval() {
  if (setup_.whyReadOnly.empty()) return false;
  refuse({setup_.whyReadOnly});
  return true;
}

void Browser::askRemoval() {
  if (refusesRemoval()) return;
  std::vector<RemovalItem> items;
  for (const auto& [path, size] : marked_) items.push_back({.path = path, .size = size});
  const Row* row = view_.current();
  if (items.empty()) {
    if (row == nullptr || !row->isItem()) return;
    const auto cleanup = cleanups_.find(row->path);
    if (page_ == Page::cleanable && cleanup != cleanups_.end())
      return askCleanup(CleanupRequest{cleanup->second});
    items.push_back({.path = row->path, .size = row->size});
  }
  context_.scan = tree_.share();
  RemovalOffer offer = offerRemoval(std::move(items), context_, view_.now);
  if (!offer.forGood) return refuse(std::move(offer.refused));
  Popup popup =
      box(i18n("Remove?"), BrowseText::removal(offer, view_), i18n("Enter do it   Esc keep everything"));
  std::vector<std::optional<CleanupPlan>> plans;
  const auto choice = [&](std::string text, std::optional<CleanupPlan> plan) {
    popup.choices.push_back(std::move(text));
    plans.push_back(std::move(plan));
  };
  choice(i18n("Keep everything"), std::nullopt);
  if (offer.toTrash) choice(i18n("Move to the Trash"), std::move(offer.toTrash));
  choice(i18n("Delete for good"), std::move(offer.forGood));
  ask(std::move(popup), [this, plans = std::move(plans)](std::size_t chosen) {
    if (plans[chosen]) carryOut(*plans[chosen]);
  });
}

void Browser::askCleanup(const CleanupRequest& request) {
  context_.scan = tree_.share();
  auto plan = planCleanup(request, context_, view_.now);
  if (!plan) return refuse({CleanupText::refusalText(request, plan.error(), context_)});
  Popup popup =
      box(plan->title, BrowseText::cleanup(*plan, view_), i18n("Enter do it   Esc keep everything"));
  popup.choices = {i18n("Keep everything"), plan->button};
  ask(std::move(popup), [this, plan = std::move(*plan)](std::size_t chosen) {
    if (chosen == 1) carryOut(plan);
  });
}

void Browser::carryOut(CleanupPlan plan) {
  stopRemoval_ = std::make_shared<std::atomic<bool>>(false);
  view_.popup = box(plan.title, {{CleanupText::progressText(plan, {}, view_.locale)}}, i18n("Esc stop"));
  const std::string trash =
      highestMissing(tree_.scan(), trashPlace(&tree_.scan(), view_.home, context_.data).folder);
  std::vector<std::string> touched = plan.touched;
  if (movesToTrash(plan) && tree_.scan().components(trash)) touched.push_back(trash);
  worker_.run([this, plan = std::move(plan), touched, stop = stopRemoval_, context = context_,
               minSize = tree_.scan().minNodeSize, excludes = tree_.scan().coverage.excludes,
               locale = view_.locale]() -> Worker::Then {
    auto next = std::chrono::steady_clock::now();
    const CleanupReport report = Cleanup::carryOut(plan, context, [&](const Removed& soFar) {
      const auto now = std::chrono::steady_clock::now();
      if (now >= next) {
        next = now + std::chrono::milliseconds{100};
        worker_.tell([this, text = CleanupText::progressText(plan, soFar, locale)] {
          if (view_.popup && stopRemoval_) view_.popup->text = {{text}};
        });
      }
      return !*stop;
    });
    std::vector<Measured> measured;
    for (const std::string& path : touched) measured.push_back(measureAgain(path, minSize, excludes));
    return [this, plan, report, measured] { removed(plan, report, measured); };
  });
}

void Browser::removed(const CleanupPlan& plan, const CleanupReport& report,
                      const std::vector<Measured>& measured) {
  stopRemoval_.reset();
  closePopup();
  for (const Measured& item : measured) {
    tree_.put(item);
    if (isScanning()) touchedMeanwhile_.push_back(item.path);
    if (!item.exists)
      std::erase_if(marked_, [&](const auto& mark) { return isAtOrBelow(mark.first, item.path); });
  }
  storeScan(plan.touched);
  if (page_ == Page::folder) {
    // A listing that runs may have met the item before.
    listing_.reset();
    soFar_.reset();
    updateRows();
    listFolder();
  } else if (page_ == Page::cleanable) {
    page_ = Page::folder;  // in case nothing is left
    showCleanable();
    if (page_ == Page::folder) leavePage();
  } else {
    std::erase_if(view_.rows, [](const Row& row) { return !mayExist(row.path); });
  }
  if (!report.isComplete(plan)) {
    return ask(box(i18n("Not everything was removed"), {{CleanupText::outcome(plan, report, context_)}},
                   i18n("any key: back")),
               {});
  }
  if (plan.steps.size() == 1) return say(CleanupText::outcome(plan, report, context_));
  say(CleanupText::successText({.label = BrowseText::doneLabel(plan, view_.locale),
                                .removed = report.removed(),
                                .freed = movesToTrash(plan) ? std::nullopt : report.freed()},
                               view_.locale));
}

// Stores the changed scan; if it is of another folder than those that the application shows, brings the
// application's in line too.
void Browser::storeScan(std::vector<std::string> touched) {
  if (!isStored_) return;
  worker_.run([this, scan = tree_.share(), touched = std::move(touched)]() -> Worker::Then {
    const SnapshotStore store = SnapshotStore::ofRoot(scan->rootPath());
    const bool isShown = store.directory == SnapshotStore::standard().directory;
    auto saved = isShown ? std::expected<void, Error>{} : remeasureInNewestScan(touched);
    if (const auto stored = store.save(*scan); !stored) saved = std::unexpected(stored.error());
    if (saved) return {};
    return [this, reason = saved.error().message] {
      say(i18n("Couldn't save changes to the scan: {reason}", {{"reason", reason}}), true);
    };
  });
}

}  // namespace spacemint::ctl
