#include "core/scan/ScanUpdate.h"

#include "core/base/Unicode.h"
#include "core/host/FolderSum.h"
#include "core/host/ListingError.h"
#include "core/tree/Paths.h"

#include <algorithm>
#include <cerrno>
#include <limits>
#include <unordered_map>
#include <utility>

namespace spacemint {

namespace {

using Kind = MeasuredChanges::Kind;
using Folder = MeasuredChanges::Folder;

bool hasChildren(Kind kind) {
  return kind == Kind::below || kind == Kind::listed;
}

// A stored scan has the replacement character in place of bytes that are not UTF-8, so a name with such bytes
// or with this character may belong to any of several folders.
bool isAmbiguous(std::string_view name) {
  return name.contains("\ufffd") || !isValidUtf8(name);
}

// Opens a folder below a root name by name, so that no symbolic link leads to another folder or volume.
class ListingBelow final : public FolderListing {
 public:
  ListingBelow(FolderListing& inner, std::string root, std::vector<std::string> names)
      : inner_(inner),
        root_(std::move(root)),
        names_(std::move(names)) {}

  std::expected<std::unique_ptr<OpenFolder>, Error> open(const std::string& path) override {
    auto folder = inner_.open(root_);
    for (const std::string& name : names_) {
      if (!folder) break;
      auto next = (*folder)->openSubfolder(name);
      if (!next) {
        error_ = next.error();
        return std::unexpected(systemError(path, error_));
      }
      folder = std::move(*next);
    }
    return folder;
  }

  // The errno of the subfolder that could not be opened, or 0.
  int error() const { return error_; }

 private:
  FolderListing& inner_;
  std::string root_;
  std::vector<std::string> names_;
  int error_ = 0;
};

class Update {
 public:
  Update(ScanUpdate given, const DiskScanner::Arguments& arguments)
      : earlier_(std::move(given.earlier)),
        folders_(std::move(given.changes.folders)),
        files_(std::move(given.changes.files)),
        arguments_(arguments),
        states_(folders_.size()) {}

  std::optional<DiskScanner::Result> run() {
    Node root = std::move(earlier_.root);
    if (!folders_.empty()) {
      states_.front().old = &root;
      for (std::size_t i = 0; i < folders_.size(); ++i) compare(i);
      compareFiles();
      Node made;
      // Subfolders come after their parents, so this order completes the subfolders first.
      for (std::size_t i = folders_.size(); i-- > 0 && !cancelled_;) made = finish(i);
      root = std::move(made);
    }
    if (cancelled_ || (arguments_.shouldCancel && arguments_.shouldCancel())) return std::nullopt;
    root.name = arguments_.root;
    if (arguments_.progress) arguments_.progress({.files = root.fileCount, .bytes = root.size});
    Coverage coverage = coverageOf(root);
    const std::int64_t files = root.fileCount;
    return DiskScanner::Result{.root = std::move(root), .fileCount = files, .coverage = std::move(coverage)};
  }

 private:
  static constexpr std::size_t last = std::numeric_limits<std::size_t>::max();

  // A child of the new node, and its position in the earlier scan.
  struct Child {
    Node node;
    std::size_t position = last;
  };
  struct State {
    // The folder in the earlier scan; null if it was too small or did not exist.
    Node* old = nullptr;
    std::size_t position = last;
    // The children of `old` by name, while they are looked up.
    std::unordered_map<std::string_view, Node*> oldByName;
    // The folder lies in an unknown one.
    bool isSkipped = false;
    // What the scans of unknown folders add, and what the journal counted of folders that became unknown.
    Bytes moreBytes = 0;
    std::int64_t moreFiles = 0;
    std::vector<Child> children;
  };

  // The mounts of the root: the only one that is entered, and those that are left out.
  Coverage coverageOf(const Node& root) {
    Coverage coverage{.unread = std::move(unread_)};
    const auto host = arguments_.listing == nullptr ? hostFolderListing() : nullptr;
    FolderListing& listing = host ? *host : *arguments_.listing;
    if (!listing.open(arguments_.root)) return coverage;
    for (ListedPlace& place : listing.places()) {
      coverage.places.push_back({.place = std::move(place), .size = root.size, .fileCount = root.fileCount});
    }
    coverage.leftOut = listing.leftOut();
    return coverage;
  }

  // Finds the folder in the earlier scan. A folder that should be as before but is not counts as unknown.
  void compare(std::size_t i) {
    Folder& folder = folders_[i];
    State& state = states_[i];
    if (i > 0) {
      const State& parent = states_[folder.parent];
      const Kind above = folders_[folder.parent].kind;
      state.isSkipped = parent.isSkipped || above == Kind::unknown;
      if (state.isSkipped) return;
      const bool mayLook = !isAmbiguous(folder.name);
      const auto found = mayLook ? parent.oldByName.find(folder.name) : parent.oldByName.end();
      if (found != parent.oldByName.end() && found->second->isDirectory) {
        state.old = found->second;
        state.position = static_cast<std::size_t>(state.old - parent.old->children.data());
      }
      const bool isMissed =
          folder.kind == Kind::same ? !isAsBefore(folder, state.old) : folder.kind == Kind::below && !mayLook;
      if (isMissed) {
        folder.kind = Kind::unknown;
        addAbove(i, saturatingSubtract(0, folder.size), saturatingSubtract(0, folder.fileCount));
      }
    }
    if (state.old != nullptr && hasChildren(folder.kind)) {
      for (Node& child : state.old->children) state.oldByName.emplace(child.name, &child);
    }
  }

  static bool isAsBefore(const Folder& folder, const Node* old) {
    return old != nullptr && old->size == folder.size && old->fileCount == folder.fileCount;
  }

  void compareFiles() {
    for (MeasuredChanges::File& file : files_) {
      State& folder = states_[file.folder];
      if (folders_[file.folder].kind != Kind::listed) continue;
      Child child{.node = {.name = std::move(file.name),
                           .size = file.size,
                           .modified = dateFromUnixSeconds(file.modified)}};
      const auto found = folder.oldByName.find(child.node.name);
      if (found != folder.oldByName.end() && !found->second->isDirectory) {
        child.position = static_cast<std::size_t>(found->second - folder.old->children.data());
      }
      folder.children.push_back(std::move(child));
    }
    for (State& state : states_) state.oldByName.clear();  // the names are moved from now on
  }

  // Makes the node of a folder and hands it to the parent. Returns the node if the folder is the root.
  Node finish(std::size_t i) {
    const Folder& folder = folders_[i];
    State& state = states_[i];
    if (state.isSkipped) return {};
    Node node;
    if (folder.kind == Kind::same) {
      node = std::move(*state.old);
    } else if (folder.kind == Kind::unknown) {
      auto scanned = scan(i);
      if (!scanned) return {};
      node = std::move(*scanned);
      addAbove(i, node.size, node.fileCount);
    } else {
      node = assembled(i);
    }
    node.name = folder.name;
    if (i == 0) return node;
    if (isStored(node.size, node.fileCount, arguments_.minNodeSize)) {
      states_[folder.parent].children.push_back({.node = std::move(node), .position = state.position});
    }
    return {};
  }

  void addAbove(std::size_t i, Bytes bytes, std::int64_t files) {
    while (i != 0) {
      i = folders_[i].parent;
      states_[i].moreBytes = saturatingAdd(states_[i].moreBytes, bytes);
      states_[i].moreFiles = saturatingAdd(states_[i].moreFiles, files);
    }
  }

  Node assembled(std::size_t i) {
    const Folder& folder = folders_[i];
    State& state = states_[i];
    std::vector<Child>& children = state.children;
    if (folder.kind == Kind::below && state.old != nullptr) {
      for (std::size_t at = 0; at < state.old->children.size(); ++at) {
        Node& child = state.old->children[at];
        if (!child.isDirectory) children.push_back({.node = std::move(child), .position = at});
      }
    }
    std::ranges::stable_sort(children, [](const Child& a, const Child& b) {
      return a.node.size != b.node.size ? a.node.size > b.node.size : a.position < b.position;
    });
    Node node{.size = saturatingAdd(folder.size, state.moreBytes),
              .isDirectory = true,
              .fileCount = saturatingAdd(folder.fileCount, state.moreFiles),
              .isWorktree = folder.isWorktree};
    node.children.reserve(children.size());
    for (Child& child : children) node.children.push_back(std::move(child.node));
    children.clear();
    return node;
  }

  // Scans a folder that the journal does not know. Absent if there is nothing to be found or the scan was
  // cancelled.
  std::optional<Node> scan(std::size_t i) {
    std::vector<std::string> names;
    for (std::size_t at = i; at != 0; at = folders_[at].parent) names.push_back(folders_[at].name);
    std::ranges::reverse(names);
    std::string path = arguments_.root;
    for (const std::string& name : names) path = Paths::join(path, name);

    const auto host = arguments_.listing == nullptr ? hostFolderListing() : nullptr;
    ListingBelow listing{host ? *host : *arguments_.listing, arguments_.root, std::move(names)};
    DiskScanner::Arguments arguments = arguments_;
    arguments.root = path;
    arguments.skip.clear();
    arguments.reuse = {};
    arguments.listing = &listing;
    arguments.look = {};
    arguments.progress = [&](const DiskScanner::Progress& progress) {
      if (!arguments_.progress) return;
      arguments_.progress({.files = saturatingAdd(folders_.front().fileCount, progress.files),
                           .bytes = saturatingAdd(folders_.front().size, progress.bytes)});
    };
    auto result = DiskScanner::scan(arguments);
    if (result) {
      take(std::move(result->coverage.unread));
      return std::move(result->root);
    }
    cancelled_ = listing.error() == 0;
    if (!cancelled_ && !isGoneOrElsewhere(listing.error())) {
      const bool isFailure = listing.error() != EACCES && listing.error() != EPERM;
      take({.folders = 1, .hasFailures = isFailure, .paths = {std::move(path)}});
    }
    return std::nullopt;
  }

  void take(Unread unread) {
    unread_.folders += unread.folders;
    unread_.entries += unread.entries;
    unread_.hasFailures = unread_.hasFailures || unread.hasFailures;
    for (std::string& path : unread.paths) {
      if (unread_.paths.size() < Unread::pathLimit) unread_.paths.push_back(std::move(path));
    }
  }

  Snapshot earlier_;
  std::vector<Folder> folders_;
  std::vector<MeasuredChanges::File> files_;
  const DiskScanner::Arguments& arguments_;
  std::vector<State> states_;
  Unread unread_;
  bool cancelled_ = false;
};

}  // namespace

bool ScanUpdate::isUsable() const {
  std::vector<std::size_t> depths(changes.folders.size());
  for (std::size_t i = 1; i < depths.size(); ++i) {
    const Folder& folder = changes.folders[i];
    if (folder.parent >= i || changes.folders[folder.parent].kind == Kind::same) return false;
    depths[i] = depths[folder.parent] + 1;
    if (depths[i] >= Node::maximumDepth) return false;
  }
  return changes.folders.empty() || changes.folders.front().kind != Kind::same;
}

std::optional<DiskScanner::Result> ScanUpdate::run(const DiskScanner::Arguments& arguments) && {
  return Update{std::move(*this), arguments}.run();
}

}  // namespace spacemint
