#include "core/scan/ExcludingListing.h"

#include "core/host/FolderSum.h"
#include "core/tree/Paths.h"

#include <algorithm>
#include <mutex>
#include <utility>

namespace spacemint {

// What all folders of a listing share.
struct ExcludingListing::Shared {
  Shared(const Excludes& patterns, Bytes minimum) : excludes(patterns), minNodeSize(minimum) {}

  const Excludes& excludes;
  Bytes minNodeSize;
  std::mutex mutex;
  std::vector<LeftOut> leftOut;

  void note(LeftOut item) {
    const std::lock_guard lock(mutex);
    leftOut.push_back(std::move(item));
  }
};

class ExcludingListing::Folder final : public OpenFolder {
 public:
  Folder(std::unique_ptr<OpenFolder> inner, std::shared_ptr<Shared> shared, std::string path,
         Excludes::Place place)
      : inner_(std::move(inner)),
        shared_(std::move(shared)),
        path_(std::move(path)),
        place_(std::move(place)) {}

  std::uint64_t device() const override { return inner_->device(); }
  Facts facts() const override { return inner_->facts(); }

  // An empty batch would end the folder.
  Batch nextBatch(ListingBuffer& buffer) override {
    for (;;) {
      Batch batch = inner_->nextBatch(buffer);
      if (batch.entries.empty()) return batch;
      std::erase_if(buffer.entries, [&](const Entry& entry) { return leavesOut(entry); });
      batch.entries = buffer.entries;
      if (!batch.entries.empty()) return batch;
    }
  }

  std::expected<std::unique_ptr<OpenFolder>, int> openSubfolder(const std::string& name) override {
    auto opened = inner_->openSubfolder(name);
    if (!opened) return opened;
    return std::make_unique<Folder>(std::move(*opened), shared_, Paths::join(path_, name),
                                    shared_->excludes.below(place_, name));
  }

  void leaveOut(const std::string& name) override { inner_->leaveOut(name); }

 private:
  bool leavesOut(const Entry& entry) {
    const bool isFolder = entry.type == EntryType::folder;
    if (!shared_->excludes.leavesOut(place_, entry.name, isFolder)) return false;
    if (isFolder) inner_->leaveOut(std::string{entry.name});
    const Bytes size = shareOf(entry);
    if (isFolder || size >= shared_->minNodeSize) {
      shared_->note({.path = Paths::join(path_, entry.name),
                     .kind = LeftOut::Kind::excluded,
                     .size = isFolder ? std::nullopt : std::optional{size}});
    }
    return true;
  }

  std::unique_ptr<OpenFolder> inner_;
  std::shared_ptr<Shared> shared_;
  std::string path_;
  Excludes::Place place_;
};

ExcludingListing::ExcludingListing(FolderListing& inner, const Excludes& excludes, Bytes minNodeSize)
    : inner_(inner),
      shared_(std::make_shared<Shared>(excludes, minNodeSize)) {}

ExcludingListing::~ExcludingListing() = default;

std::expected<std::unique_ptr<OpenFolder>, Error> ExcludingListing::open(const std::string& root) {
  auto opened = inner_.open(root);
  if (!opened) return opened;
  return std::make_unique<Folder>(std::move(*opened), shared_, root, shared_->excludes.at(root));
}

std::vector<LeftOut> ExcludingListing::leftOut() const {
  std::vector<LeftOut> all = inner_.leftOut();
  const std::lock_guard lock(shared_->mutex);
  all.insert(all.end(), shared_->leftOut.begin(), shared_->leftOut.end());
  // A listing with helpers may list a folder twice.
  std::ranges::sort(all);
  const auto repeated = std::ranges::unique(all);
  all.erase(repeated.begin(), repeated.end());
  return all;
}

}  // namespace spacemint
