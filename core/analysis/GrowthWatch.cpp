#include "core/analysis/GrowthWatch.h"

#include "core/tree/Paths.h"

#include <algorithm>
#include <functional>
#include <ranges>

namespace spacemint {

namespace {

using namespace std::chrono_literals;

constexpr std::size_t nameLimit = 8;
// A folder has a line of its own from this share of all growth on, and names a file from that share of its
// line on.
constexpr double ownLineShare = 0.1;
constexpr double namedShare = 0.6;
// A line moves up when it exceeds the one above it by a fifth.
constexpr double overtakes = 1.2;

bool isShare(Bytes part, double share, Bytes whole) {
  return static_cast<double>(part) >= share * static_cast<double>(whole);
}

std::string aboveInRoot(const std::string& path, const std::string& root) {
  return path.size() <= root.size() ? root : Paths::parent(path);
}

std::chrono::seconds secondsBetween(GrowthWatch::Time from, GrowthWatch::Time to) {
  return std::chrono::duration_cast<std::chrono::seconds>(to - from);
}

Bytes sumOf(const FolderContents& contents) {
  Bytes sum = 0;
  for (const FolderContents::File& file : contents.files) sum = saturatingAdd(sum, file.size);
  return sum;
}

GrowthFigures notBelowZero(const GrowthFigures& figures) {
  return {std::max<Bytes>(figures.tenSeconds, 0), std::max<Bytes>(figures.minute, 0),
          std::max<Bytes>(figures.tenMinutes, 0)};
}

}  // namespace

void GrowthWatch::look(const std::string& path, const FolderContents& contents, Date lookedBefore, Time now) {
  Folder& folder = folders_[path];
  if (contents.files.size() <= fileLimit) {
    lookAtFiles(path, contents, lookedBefore, now);
  } else {
    lookAtSum(folder, contents, lookedBefore, now);
  }
  folder.sum = sumOf(contents);
  folder.isKnown = true;
}

// What was added to the file since the last look. A file of which that is not known counts as moved here.
std::optional<Bytes> GrowthWatch::changeOf(const Folder& folder, const FolderContents::File& file,
                                           Date lookedBefore) {
  const auto before = folder.files.find(file.inode);
  if (before != folder.files.end()) return file.size - before->second;
  if (file.born && *file.born > lookedBefore) return file.size;
  arrivals_.insert(file.inode);
  return std::nullopt;
}

void GrowthWatch::lookAtFiles(const std::string& path, const FolderContents& contents, Date lookedBefore,
                              Time now) {
  Folder& folder = folders_[path];
  std::unordered_map<std::uint64_t, Bytes> files;
  for (const FolderContents::File& file : contents.files) {
    const Bytes change = changeOf(folder, file, lookedBefore).value_or(0);
    if (change > 0) grow(folder, file, change, now);
    if (change < 0) folder.freed.add(-change, now);
    files.emplace(file.inode, file.size);
  }
  for (const auto& [inode, size] : folder.files) {
    if (!files.contains(inode)) departures_.push_back({path, inode, size});
  }
  folder.files = std::move(files);
  follow(folder, contents);
}

void GrowthWatch::lookAtSum(Folder& folder, const FolderContents& contents, Date lookedBefore, Time now) {
  Bytes change = 0;
  for (const FolderContents::File& file : contents.files)
    change = saturatingAdd(change, std::max<Bytes>(0, changeOf(folder, file, lookedBefore).value_or(0)));
  if (folder.isKnown) change = saturatingSubtract(sumOf(contents), folder.sum);
  (change > 0 ? folder.grown : folder.freed).add(std::abs(change), now);
  folder.files.clear();
  folder.growing.clear();
}

void GrowthWatch::remove(const std::string& path, Time now) {
  const auto found = folders_.find(path);
  if (found == folders_.end()) return;
  Folder& folder = found->second;
  if (folder.files.empty()) folder.freed.add(folder.sum, now);
  for (const auto& [inode, size] : folder.files) departures_.push_back({path, inode, size});
  folder.files.clear();
  folder.growing.clear();
  folder.sum = 0;
}

void GrowthWatch::settleDepartures(Time now) {
  for (const Departure& each : departures_) {
    if (!arrivals_.contains(each.inode)) folders_[each.folder].freed.add(each.size, now);
  }
  departures_.clear();
  arrivals_.clear();
}

void GrowthWatch::grow(Folder& folder, const FolderContents::File& file, Bytes bytes, Time now) {
  folder.grown.add(bytes, now);
  folder.growing[file.inode].window.add(bytes, now);
  if (folder.growing.size() <= nameLimit) return;
  const auto grownOf = [&](const auto& each) { return each.second.window.figures(now).tenMinutes; };
  folder.growing.erase(std::ranges::min_element(folder.growing, {}, grownOf));
}

// Files that are gone are not named any more; the others by the names that they have now.
void GrowthWatch::follow(Folder& folder, const FolderContents& contents) {
  std::erase_if(folder.growing, [&](const auto& each) { return !folder.files.contains(each.first); });
  for (const FolderContents::File& file : contents.files) {
    const auto found = folder.growing.find(file.inode);
    if (found != folder.growing.end()) found->second.name = file.name;
  }
}

// Drops what said nothing for ten minutes, and beyond the limit counts the least in their parents.
void GrowthWatch::forget(Time now) {
  std::erase_if(folders_, [&](const auto& each) {
    const Folder& folder = each.second;
    return folder.files.empty() && folder.sum == 0 && folder.grown.figures(now).tenMinutes == 0 &&
           folder.freed.figures(now).tenMinutes == 0;
  });
  while (folders_.size() > folderLimit) mergeLeast(folders_.size() - folderLimit, now);
}

void GrowthWatch::mergeLeast(std::size_t count, Time now) {
  std::vector<std::pair<Bytes, std::string>> ranked;
  for (const auto& [path, folder] : folders_) {
    const Bytes moved =
        saturatingAdd(folder.grown.figures(now).tenMinutes, folder.freed.figures(now).tenMinutes);
    if (path != root_) ranked.emplace_back(moved, path);
  }
  std::ranges::sort(ranked);
  ranked.resize(std::min(count, ranked.size()));
  for (const auto& [moved, path] : ranked) {
    const Folder merged = std::move(folders_.extract(path).mapped());
    Folder& into = folders_[aboveInRoot(path, root_)];
    into.grown.merge(merged.grown);
    into.freed.merge(merged.freed);
  }
}

void GrowthWatch::finish(Bytes free, Time now) {
  settleDepartures(now);
  forget(now);
  account(free, now);
  auto candidates = explain(false, now);
  std::ranges::move(explain(true, now), std::back_inserter(candidates));
  show(chosenFrom(std::move(candidates), now));
}

GrowthFigures GrowthWatch::total(bool freed, Time now) const {
  GrowthFigures total;
  for (const auto& [path, folder] : folders_) total += (freed ? folder.freed : folder.grown).figures(now);
  return total;
}

void GrowthWatch::account(Bytes free, Time now) {
  const Bytes lost = begun_ ? saturatingSubtract(free_, free) : 0;
  if (!begun_) begun_ = now;
  free_ = free;
  (lost > 0 ? lostWindow_ : gainedWindow_).add(std::abs(lost), now);
  lost_ = lostWindow_.figures(now) - gainedWindow_.figures(now);
  elsewhere_ = notBelowZero(lost_ - (total(false, now) - total(true, now)));
  if (lost_.tenSeconds <= 0) losingSince_.reset();
  if (lost_.tenSeconds > 0 && !losingSince_) losingSince_ = now;
  untilFull_.reset();
  if (losingSince_ && now - *losingSince_ >= 60s && lost_.minute > 0)
    untilFull_ = std::chrono::seconds{free / std::max<Bytes>(lost_.minute / 60, 1)};
}

// From the deepest folder up: what a folder does not tell itself, its parent does. A map in the order of
// paths, read backwards, has the folders before their parents.
std::vector<GrowthLine> GrowthWatch::explain(bool freed, Time now) const {
  const Bytes all = total(freed, now).tenMinutes;
  std::map<std::string, GrowthFigures, std::greater<>> left;
  for (const auto& [path, folder] : folders_) {
    const auto figures = (freed ? folder.freed : folder.grown).figures(now);
    if (figures.tenMinutes > 0) left[path] += figures;
  }
  std::vector<GrowthLine> lines;
  for (auto at = left.begin(); at != left.end(); ++at) {
    const auto& [path, figures] = *at;
    const bool isRoot = path == root_;
    if (isRoot || (figures.tenMinutes >= goneBelow && isShare(figures.tenMinutes, ownLineShare, all))) {
      lines.push_back({.path = path, .isFreed = freed, .figures = figures});
      if (!freed) name(lines.back(), now);
    } else {
      left[aboveInRoot(path, root_)] += figures;
    }
  }
  return lines;
}

// A line says the file in place of its folder if one file explains most of it.
void GrowthWatch::name(GrowthLine& line, Time now) const {
  const auto folder = folders_.find(line.path);
  if (folder == folders_.end()) return;
  for (const auto& [inode, file] : folder->second.growing) {
    if (!isShare(file.window.figures(now).tenMinutes, namedShare, line.figures.tenMinutes)) continue;
    line.path = Paths::join(line.path, file.name);
    line.isDirectory = false;
    return;
  }
}

// Updates what is known of each candidate, and returns those that have a line.
std::vector<GrowthLine> GrowthWatch::chosenFrom(std::vector<GrowthLine> candidates, Time now) {
  const Bytes minimum = std::clamp<Bytes>(free_ / 100, 1, lineMinimum);
  std::map<std::pair<bool, std::string>, Shown> shown;
  std::vector<GrowthLine> chosen;
  for (GrowthLine& line : candidates) {
    const std::pair key{line.isFreed, line.path};
    const auto before = shown_.find(key);
    Shown state = before != shown_.end() ? before->second : Shown{.first = now, .last = now};
    line.isGoingOn = line.figures.tenSeconds > 0;
    if (line.isGoingOn) {
      if (now - state.last > 60s) state.first = now;
      state.last = now;
    }
    state.refreshes = line.figures.minute >= minimum ? state.refreshes + 1 : 0;
    state.isShown = line.figures.tenMinutes >= std::min(goneBelow, minimum) &&
                    (state.isShown || state.refreshes >= 2 || line.figures.minute >= 10 * minimum);
    line.duration = secondsBetween(state.first, state.last);
    line.quiet = secondsBetween(state.last, now);
    if (state.isShown) chosen.push_back(std::move(line));
    shown.emplace(key, state);
  }
  shown_ = std::move(shown);
  return chosen;
}

// The old order first, then what is new; a line that grew more moves up.
void GrowthWatch::show(std::vector<GrowthLine> chosen) {
  const auto placeOf = [&](const GrowthLine& line) {
    const auto same = [&](const GrowthLine& old) {
      return old.path == line.path && old.isFreed == line.isFreed;
    };
    return std::ranges::find_if(lines_, same) - lines_.begin();
  };
  std::ranges::stable_sort(chosen, {}, placeOf);
  for (std::size_t i = 1; i < chosen.size(); ++i) {
    for (std::size_t at = i; at > 0; --at) {
      const bool isKnown = placeOf(chosen[at]) < static_cast<std::ptrdiff_t>(lines_.size());
      const double factor = isKnown ? overtakes : 1;
      if (!(static_cast<double>(chosen[at].figures.minute) >
            factor * static_cast<double>(chosen[at - 1].figures.minute)))
        break;
      std::swap(chosen[at], chosen[at - 1]);
    }
  }
  chosen.resize(std::min(chosen.size(), lineLimit));
  lines_ = std::move(chosen);
}

}  // namespace spacemint
