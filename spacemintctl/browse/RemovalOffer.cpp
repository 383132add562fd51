#include "spacemintctl/browse/RemovalOffer.h"

#include "core/base/AsciiText.h"
#include "core/base/Isolate.h"
#include "core/base/Translation.h"
#include "core/cleanup/CleanupText.h"
#include "core/places/TrashPlace.h"
#include "core/tree/Paths.h"

#include <algorithm>

namespace spacemint::ctl {

namespace {

void dropWhatIsInsideOthers(std::vector<RemovalItem>& items) {
  std::ranges::sort(items, {}, &RemovalItem::path);
  std::vector<RemovalItem> kept;
  for (RemovalItem& item : items) {
    const bool isInside = std::ranges::any_of(
        kept, [&](const RemovalItem& other) { return isAtOrBelow(item.path, other.path); });
    if (!isInside) kept.push_back(std::move(item));
  }
  std::ranges::stable_sort(kept, std::greater{}, &RemovalItem::size);
  items = std::move(kept);
}

std::optional<CleanupPlan> merged(std::string title, std::vector<CleanupPlan> plans) {
  if (plans.empty()) return std::nullopt;
  return mergedPlans(std::move(title), std::move(plans));
}

}  // namespace

RemovalOffer offerRemoval(std::vector<RemovalItem> items, const CleanupContext& context, Date now) {
  dropWhatIsInsideOthers(items);
  RemovalOffer offer;
  std::vector<CleanupPlan> trash;
  std::vector<CleanupPlan> good;
  for (const RemovalItem& item : items) {
    const DeleteRequest request{.path = item.path,
                                .name = Paths::lastComponent(item.path),
                                .size = item.size,
                                .note = i18n(deleteNote)};
    auto plan = planCleanup(request, context, now);
    if (!plan) {
      offer.refused.push_back(CleanupText::refusalText(request, plan.error(), context));
      continue;
    }
    if (!plan->warning.empty()) {
      offer.warnings.push_back(items.size() == 1
                                   ? plan->warning
                                   : i18n("{subject}: {note}", {{"subject", isolatedName(request.name)},
                                                                {"note", plan->warning}}));
    }
    good.push_back(std::move(*plan));
    if (isInTrash(item.path, context.guard.home(), context.data)) continue;
    if (auto toTrash = planCleanup(TrashRequest{.path = item.path, .size = item.size}, context, now))
      trash.push_back(std::move(*toTrash));
  }
  offer.toTrash = merged(i18n("Move to Trash?"), std::move(trash));
  offer.forGood = merged(i18n("Delete permanently?"), std::move(good));
  return offer;
}

}  // namespace spacemint::ctl
