#include "core/scan/GrowthReader.h"

#include "core/tree/Paths.h"

#include <algorithm>
#include <utility>

namespace spacemint {

namespace {

using namespace std::chrono_literals;

// A folder is looked at again for so long after its last event.
constexpr auto hotTime = 60s;
// Listing one folder takes at most a fiftieth of the time, where it takes long at all.
constexpr int restFactor = 50;
constexpr auto shortListing = 1ms;
// So many folders of new trees are looked at in one refresh.
constexpr std::size_t treeLimit = 4'096;
// Clocks of file systems lag behind by up to a tick.
constexpr auto clockTick = 10ms;

}  // namespace

std::expected<void, JournalError> GrowthReader::refresh(Time now, Date date) {
  const auto free = parts_.freeBytes();
  if (!free) return std::unexpected(JournalError::failed);
  const bool isStill = since_ != 0 && free == freeBefore_ && due_.empty();
  if (!isStill) {
    if (auto noted = noteChanges(date); !noted) return noted;
    lookAtDue(now, date);
  }
  freeBefore_ = free;
  dateBefore_ = date;
  watch_.finish(*free, now);
  return {};
}

std::expected<void, JournalError> GrowthReader::noteChanges(Date date) {
  const JournalQuery query{.root = parts_.root, .since = since_, .timeout = parts_.timeout};
  const std::uint64_t id = parts_.journal.currentEventID(query);
  if (id == 0) {
    since_ = 0;
    return std::unexpected(JournalError::notRecording);
  }
  const bool isFirst = std::exchange(since_, id) == 0;
  if (isFirst) return {};
  const auto changes = parts_.journal.changes(query);
  if (!changes) {
    since_ = 0;
    return std::unexpected(changes.error());
  }
  const auto note = [&](const std::string& folder, bool isTree) {
    const auto [due, isNew] = due_.try_emplace(folder, Due{.lookedBefore = std::min(dateBefore_, date)});
    due->second.isTree = due->second.isTree || isTree;
    hotUntil_[folder] = Time::min();
  };
  for (const std::string& folder : changes->directories) note(folder, false);
  for (const std::string& folder : changes->trees) note(folder, true);
  return {};
}

void GrowthReader::lookAtDue(Time now, Date date) {
  const bool isQuietDue = now >= quietRestUntil_;
  for (auto& [folder, until] : hotUntil_) {
    if (until == Time::min()) until = now + hotTime;
    if (isQuietDue) due_.try_emplace(folder, Due{.lookedBefore = std::min(dateBefore_, date)});
  }
  const auto begun = std::chrono::steady_clock::now();
  std::erase_if(hotUntil_, [&](const auto& each) { return each.second <= now; });
  std::erase_if(restUntil_, [&](const auto& each) { return each.second <= now; });
  for (auto at = due_.begin(); at != due_.end();) {
    if (restUntil_.contains(at->first)) {
      ++at;
      continue;
    }
    look(at->first, at->second, now);
    at = due_.erase(at);
  }
  if (isQuietDue) quietRestUntil_ = now + (std::chrono::steady_clock::now() - begun) * restFactor;
}

void GrowthReader::look(const std::string& top, const Due& due, Time now) {
  std::vector<std::string> pending{top};
  const auto begun = std::chrono::steady_clock::now();
  for (std::size_t looked = 0; !pending.empty() && looked < treeLimit; ++looked) {
    const std::string folder = std::move(pending.back());
    pending.pop_back();
    const auto contents = contentsOf(folder);
    if (!contents) {
      watch_.remove(folder, now);
      continue;
    }
    watch_.look(folder, *contents, due.lookedBefore - clockTick, now);
    if (!due.isTree) break;
    for (const std::string& name : contents->folders) pending.push_back(Paths::join(folder, name));
  }
  const auto took = std::chrono::steady_clock::now() - begun;
  if (took > shortListing) restUntil_[top] = now + took * restFactor;
}

}  // namespace spacemint
