#include "core/scan/DiskScanner.h"

#include "core/base/AsciiText.h"
#include "core/host/FolderSum.h"
#include "core/host/ListingError.h"
#include "core/scan/ExcludingListing.h"
#include "core/scan/NameList.h"
#include "core/scan/ReadAheadListing.h"
#include "core/tree/Paths.h"

#include <algorithm>
#include <cerrno>

namespace spacemint {

namespace {

using namespace DiskScanner;

// A folder on the path from the root to the folder that the walk lists now.
struct Frame {
  std::unique_ptr<OpenFolder> folder;
  std::string name;
  // The length of the folder's own path within `Walk::path_`.
  std::size_t pathLength = 0;
  OpenFolder::Facts facts;
  Bytes size = 0;
  std::int64_t files = 0;
  bool isWorktree = false;
  // Whether the file system keeps small files among its own data.
  bool inlinesSmallFiles = false;
  std::vector<Node> children;
  // Subfolders that were listed but not visited yet. The walk visits the last one next.
  NameList subdirectories;
};

// Btrfs does so with files up to this length, unless it is mounted with another limit.
constexpr Bytes longestInlineFile = 2'048;

// A copy without the children.
Node withoutChildren(const Node& node) {
  return {.name = node.name,
          .size = node.size,
          .isDirectory = node.isDirectory,
          .modified = node.modified,
          .fileCount = node.fileCount,
          .isWorktree = node.isWorktree};
}

// The finished folder at `path`, relative to the folder with these children; null if there is none.
const Node* finishedFolder(const std::vector<Node>* children, std::string_view path) {
  const Node* found = nullptr;
  for (const std::string_view name : pieces(path, '/')) {
    const auto next = std::ranges::find(*children, name, &Node::name);
    if (next == children->end() || !next->isDirectory) return nullptr;
    found = &*next;
    children = &found->children;
  }
  return found;
}

class Walk final : public Unfinished {
 public:
  Walk(const Arguments& arguments, const FolderListing& listing)
      : arguments_(arguments),
        listing_(listing),
        path_(arguments.root) {}

  std::optional<Result> run(std::unique_ptr<OpenFolder> root) {
    device_ = root->device();
    for (ListedPlace& place : listing_.places()) coverage_.places.push_back({std::move(place)});
    enter(std::move(root), arguments_.root);
    while (!cancelled_) {
      if (!stack_.back().subdirectories.empty()) {
        visitNext();
      } else if (auto node = finishTop()) {
        report();
        coverage_.leftOut = listing_.leftOut();
        if (arguments_.excludes != nullptr) coverage_.excludes = arguments_.excludes->patterns();
        return Result{.root = std::move(*node),
                      .fileCount = counted_.files,
                      .coverage = std::move(coverage_),
                      .reusedFolders = std::move(reusedFolders_)};
      }
    }
    return std::nullopt;
  }

  std::optional<Node> folder(std::string_view path) const override {
    for (std::size_t i = stack_.size(); i-- > 0;) {
      const std::string_view own{path_.data(), stack_[i].pathLength};
      if (!isAtOrBelow(path, own)) continue;
      if (path.size() == own.size()) return openFolder(i);
      const Node* found = finishedFolder(&stack_[i].children, path.substr(own.size()));
      if (found == nullptr) return std::nullopt;
      Node copy = withoutChildren(*found);
      for (const Node& child : found->children) copy.children.push_back(withoutChildren(child));
      return copy;
    }
    return std::nullopt;
  }

  Progress counted() const override { return counted_; }

  std::string_view path() const override { return {path_.data(), stack_.back().pathLength}; }

  Result soFar() const override {
    std::optional<Node> inner;
    for (std::size_t i = stack_.size(); i-- > 0;) {
      Node node = measured(i);
      node.children = stack_[i].children;
      if (inner && inner->size >= arguments_.minNodeSize) node.children.push_back(std::move(*inner));
      sortBySize(node.children);
      inner = std::move(node);
    }
    return {.root = std::move(*inner), .fileCount = counted_.files, .coverage = coverage_};
  }

 private:
  // The counts of an open folder, with the open folders below it; no children.
  Node measured(std::size_t index) const {
    const Frame& frame = stack_[index];
    Node node{.name = frame.name, .isDirectory = true, .isWorktree = frame.isWorktree};
    for (std::size_t i = index; i < stack_.size(); ++i)
      add(node.size, node.fileCount, stack_[i].size, stack_[i].files);
    return node;
  }

  Node openFolder(std::size_t index) const {
    constexpr std::size_t namesWaiting = 10'000;
    const Frame& frame = stack_[index];
    Node node = measured(index);
    for (const Node& child : frame.children) node.children.push_back(withoutChildren(child));
    if (index + 1 < stack_.size()) node.children.push_back(measured(index + 1));
    for (const std::string_view name : frame.subdirectories.newest(namesWaiting))
      node.children.push_back({.name = std::string{name}, .isDirectory = true});
    return node;
  }

  void enter(std::unique_ptr<OpenFolder> folder, std::string name) {
    const OpenFolder::Facts facts = folder->facts();
    stack_.push_back(
        {.folder = std::move(folder), .name = std::move(name), .pathLength = path_.size(), .facts = facts});
    if (CoveredPlace* place = placeAt(facts.place)) {
      place->folderBytes = saturatingAdd(place->folderBytes, facts.ownSize);
      stack_.back().inlinesSmallFiles = place->place.fileSystem == "btrfs";
    }
    list(stack_.back());
  }

  void list(Frame& frame) {
    while (!cancelled_) {
      const Batch batch = frame.folder->nextBatch(buffer_);
      if (batch.error != 0 && !isGone(batch.error)) noteUnread(unread().folders, path_, batch.error);
      if (batch.entries.empty()) return;
      for (const Entry& entry : batch.entries) take(frame, entry);
      poll(std::ssize(batch.entries));
    }
  }

  void take(Frame& frame, const Entry& entry) {
    if (entry.error != 0) {
      noteUnreadEntry(entry);
    } else if (entry.type == EntryType::folder) {
      if (entry.device == device_ && !entry.name.empty()) frame.subdirectories.push(entry.name);
    } else {
      if (entry.type == EntryType::file && entry.name == ".git") frame.isWorktree = true;
      count(frame, entry, shareOf(entry));
    }
  }

  void count(Frame& frame, const Entry& entry, Bytes size) {
    add(counted_.bytes, counted_.files, size, 1);
    add(frame.size, frame.files, size, 1);
    if (frame.inlinesSmallFiles && entry.length <= longestInlineFile) {
      CoveredPlace& place = coverage_.places[frame.facts.place];
      place.inlineBytes = saturatingAdd(place.inlineBytes, size);
    }
    if (!entry.name.empty() && keeps(size)) {
      frame.children.push_back(
          {.name = std::string{entry.name}, .size = size, .modified = dateFromUnixSeconds(entry.modified)});
    }
  }

  // Whether an item in the innermost folder gets a node.
  bool keeps(Bytes size) {
    if (size >= arguments_.minNodeSize) return true;
    return stack_.size() == 1 && smallEntriesKept_++ < arguments_.smallEntriesOfRoot;
  }

  static void add(Bytes& bytes, std::int64_t& files, Bytes moreBytes, std::int64_t moreFiles) {
    bytes = saturatingAdd(bytes, moreBytes);
    files = saturatingAdd(files, moreFiles);
  }

  void poll(std::int64_t listed) {
    listedSincePoll_ += listed;
    if (listedSincePoll_ < entriesPerPoll) return;
    look();
    if (arguments_.shouldCancel && arguments_.shouldCancel()) {
      cancelled_ = true;
      return;
    }
    report();
    listedSincePoll_ = 0;
  }

  void look() {
    if (!arguments_.look) return;
    looked_ = std::chrono::steady_clock::now();
    arguments_.look(*this);
  }

  void report() const {
    if (arguments_.progress) arguments_.progress(counted_);
  }

  void visitNext() {
    if (arguments_.look && std::chrono::steady_clock::now() - looked_ >= arguments_.lookInterval) look();
    Frame& top = stack_.back();
    std::string name{top.subdirectories.last()};
    top.subdirectories.popLast();
    path_.resize(top.pathLength);
    if (!path_.ends_with('/')) path_ += '/';
    path_ += name;

    if (!arguments_.skip.empty() && arguments_.skip.contains(path_)) return;
    if (arguments_.reuse) {
      if (const Node* node = arguments_.reuse(path_)) {
        add(counted_.bytes, counted_.files, node->size, node->fileCount);
        reusedFolders_.insert(path_);
        return adopt(top, *node);
      }
    }
    if (stack_.size() >= Node::maximumDepth) return noteUnread(unread().folders, path_, EMFILE);
    auto opened = top.folder->openSubfolder(name);
    if (opened) return enter(std::move(*opened), std::move(name));
    const int error = opened.error();
    if (!isGoneOrElsewhere(error)) noteUnread(unread().folders, path_, error);
  }

  // Closes the innermost folder and adds its node to the parent. For the root, returns the node instead.
  std::optional<Node> finishTop() {
    Frame frame = std::move(stack_.back());
    stack_.pop_back();
    sortBySize(frame.children);
    Node node{.name = std::move(frame.name),
              .size = frame.size,
              .isDirectory = true,
              .children = std::move(frame.children),
              .fileCount = frame.files,
              .isWorktree = frame.isWorktree};
    countPlace(frame);
    if (stack_.empty()) return node;
    adopt(stack_.back(), std::move(node));
    return std::nullopt;
  }

  // Counts a folder for its mount. The folder is closed already; the parent is on the top of the stack.
  void countPlace(const Frame& frame) {
    if (stack_.empty()) return add(frame, frame.facts.place, 1);
    const std::size_t parentPlace = stack_.back().facts.place;
    if (frame.facts.place == parentPlace) return;
    add(frame, frame.facts.place, 1);
    add(frame, parentPlace, -1);
  }

  void add(const Frame& frame, std::size_t place, std::int64_t sign) {
    CoveredPlace* covered = placeAt(place);
    if (covered == nullptr) return;
    covered->size = saturatingAdd(covered->size, sign * frame.size);
    covered->fileCount = saturatingAdd(covered->fileCount, sign * frame.files);
  }

  CoveredPlace* placeAt(std::size_t index) {
    return index < coverage_.places.size() ? &coverage_.places[index] : nullptr;
  }

  // `parent` is the innermost folder.
  void adopt(Frame& parent, Node node) {
    add(parent.size, parent.files, node.size, node.fileCount);
    if (isStored(node.size, node.fileCount, arguments_.minNodeSize) || keeps(node.size))
      parent.children.push_back(std::move(node));
  }

  Unread& unread() { return coverage_.unread; }

  // A folder that may be listed but not searched counts as unread itself.
  void noteUnreadEntry(const Entry& entry) {
    if (isGone(entry.error)) return;
    if (entry.error != EACCES) {
      noteUnread(unread().entries, Paths::join(path_, entry.name), entry.error);
    } else if (unread().paths.empty() || unread().paths.back() != path_) {
      noteUnread(unread().folders, path_, entry.error);
    }
  }

  void noteUnread(std::int64_t& counter, const std::string& path, int error) {
    ++counter;
    if (error != EACCES && error != EPERM) unread().hasFailures = true;
    if (unread().paths.size() < Unread::pathLimit) unread().paths.push_back(path);
  }

  const Arguments& arguments_;
  const FolderListing& listing_;
  std::string path_;
  std::uint64_t device_ = 0;
  ListingBuffer buffer_;
  std::vector<Frame> stack_;
  Progress counted_;
  std::int64_t listedSincePoll_ = 0;
  std::size_t smallEntriesKept_ = 0;
  bool cancelled_ = false;
  // Long ago, so that the first look is before the first folder.
  std::chrono::steady_clock::time_point looked_;
  Coverage coverage_;
  std::unordered_set<std::string> reusedFolders_;
};

std::optional<Result> walk(const Arguments& arguments, FolderListing& listing) {
  auto root = listing.open(arguments.root);
  if (!root) return std::nullopt;
  return Walk{arguments, listing}.run(std::move(*root));
}

}  // namespace

std::optional<Result> DiskScanner::scan(const Arguments& arguments) {
  const LoweredPriority lowered{traitsOf(arguments.manner()).deference};
  const std::size_t limit = raiseOpenFileLimit(ReadAheadListing::usualOpenFileLimit);
  const auto host = arguments.listing == nullptr ? hostFolderListing() : nullptr;
  FolderListing* listing = host ? host.get() : arguments.listing;
  std::optional<ExcludingListing> excluding;
  if (arguments.excludes != nullptr && !arguments.excludes->isEmpty()) {
    listing = &excluding.emplace(*listing, *arguments.excludes, arguments.minNodeSize);
  }
  ReadAheadListing::WalkFacts facts{.isWanted = [&] { return traitsOf(arguments.manner()).readsAhead; }};
  if (arguments.reuse || !arguments.skip.empty()) {
    facts.passesBy = [&](const std::string& path) {
      return arguments.skip.contains(path) || (arguments.reuse && arguments.reuse(path) != nullptr);
    };
  }
  ReadAheadListing ahead{*listing, ReadAheadListing::limitsFor(arguments.root, limit), std::move(facts)};
  return walk(arguments, ahead);
}

}  // namespace spacemint
