#include "core/host/linux/journal/MeasuredAnswer.h"

#include "core/host/FolderSum.h"

#include <utility>

namespace spacemint {

namespace {

using Id = FolderMap::Id;
using Kind = MeasuredChanges::Kind;

bool isUnknown(const FolderMap::Record& record) {
  return (record.flags & FolderMap::unknown) != 0;
}

class AnswerTable {
 public:
  AnswerTable(const FolderMap& map, const JournalQuery& query, MeasuredFiles files)
      : map_(map),
        query_(query),
        files_(std::move(files)) {}

  std::optional<MeasuredChanges> make() {
    map_.forEach([&](Id id, const FolderMap::Record& record) {
      if (isUnknown(record)) {
        hide(id);
      } else if (record.ownChange > query_.since || record.treeChange > query_.since) {
        markUp(id);
      }
    });
    if (!marks_.contains(map_.root())) return MeasuredChanges{};
    add(map_.root(), 0, false);
    for (std::size_t next = 0; next < pending_.size(); ++next) {
      const Pending at = pending_[next];
      for (Id below = map_[at.id].firstChild; below != FolderMap::none; below = map_[below].next) {
        add(below, at.position, at.isInNewTree);
      }
    }
    if (isTooLarge_) return std::nullopt;
    return std::move(answer_);
  }

 private:
  // A folder in which or below which something changed.
  struct Mark {
    // What the map holds of unknown folders at or below the folder.
    FolderMap::Size hidden;
    bool hasUnknown = false;
  };
  // A folder of the answer whose subfolders are still to be added.
  struct Pending {
    Id id = FolderMap::none;
    std::uint32_t position = 0;
    bool isInNewTree = false;
  };

  void markUp(Id id) {
    while (id != FolderMap::none && marks_.try_emplace(id).second) id = map_[id].parent;
  }

  // Whoever scans an unknown folder counts everything below it, so the map's numbers are left out above.
  void hide(Id top) {
    markUp(top);
    for (Id id = map_[top].parent; id != FolderMap::none; id = map_[id].parent) {
      if (isUnknown(map_[id])) return;  // its own hiding includes this folder
    }
    for (Id id = top; id != FolderMap::none; id = map_[id].parent) {
      Mark& mark = marks_[id];
      mark.hidden = mark.hidden + map_[top].tree();
      mark.hasUnknown = true;
    }
  }

  void add(Id id, std::uint32_t parent, bool isInNewTree) {
    const FolderMap::Record& record = map_[id];
    const auto mark = marks_.find(id);
    const bool isMarked = mark != marks_.end();
    const FolderMap::Size size = isMarked ? record.tree() - mark->second.hidden : record.tree();
    const auto bytes = static_cast<Bytes>(size.bytes);
    if (bytes < 0) isTooLarge_ = true;
    isInNewTree = isInNewTree || record.treeChange > query_.since;
    const bool isWanted =
        isStored(bytes, size.files, query_.minNodeSize) || (isMarked && mark->second.hasUnknown);
    if (!isWanted && id != map_.root()) return;

    const auto position = static_cast<std::uint32_t>(answer_.folders.size());
    MeasuredChanges::Folder folder{.parent = parent,
                                   .isWorktree = (record.flags & FolderMap::worktree) != 0,
                                   .size = bytes,
                                   .fileCount = size.files,
                                   .name = std::string{map_.nameOf(id)}};
    if (isUnknown(record)) {
      folder.kind = Kind::unknown;
    } else if (isMarked || isInNewTree) {
      const bool isListed = isInNewTree || record.ownChange > query_.since;
      folder.kind = isListed ? Kind::listed : Kind::below;
      pending_.push_back({id, position, isInNewTree});
      if (isListed) addFiles(id, position);
    }
    answer_.folders.push_back(std::move(folder));
  }

  void addFiles(Id id, std::uint32_t position) {
    const auto found = files_.find(id);
    if (found == files_.end()) return;
    for (MeasuredChanges::File& file : found->second) {
      file.folder = position;
      answer_.files.push_back(std::move(file));
    }
  }

  const FolderMap& map_;
  const JournalQuery& query_;
  MeasuredFiles files_;
  std::unordered_map<Id, Mark> marks_;
  std::vector<Pending> pending_;
  MeasuredChanges answer_;
  bool isTooLarge_ = false;
};

}  // namespace

std::optional<MeasuredChanges> measuredAnswer(const FolderMap& map, const JournalQuery& query,
                                              MeasuredFiles files) {
  return AnswerTable{map, query, std::move(files)}.make();
}

}  // namespace spacemint
