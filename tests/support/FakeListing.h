#pragma once

#include "core/host/FolderListing.h"

#include <cerrno>
#include <map>

namespace spacemint::support {

/// A folder that exists in memory only: what its listing says, batch by batch, and what opening a name gives.
struct FakeFolder {
  std::vector<std::vector<Entry>> batches = {};
  int listingError = 0;
  std::map<std::string, FakeFolder> subfolders = {};
  std::map<std::string, int> openErrors = {};
};

/// A listing of one fake tree on device 1.
class FakeListing final : public FolderListing {
 public:
  explicit FakeListing(FakeFolder root) : root_(std::move(root)) {}

  std::expected<std::unique_ptr<OpenFolder>, Error> open(const std::string&) override {
    return std::make_unique<Opened>(root_);
  }

 private:
  class Opened final : public OpenFolder {
   public:
    explicit Opened(const FakeFolder& folder) : folder_(folder) {}

    std::uint64_t device() const override { return 1; }

    Batch nextBatch(ListingBuffer&) override {
      if (next_ == folder_.batches.size()) return {.error = folder_.listingError};
      return {.entries = folder_.batches[next_++]};
    }

    std::expected<std::unique_ptr<OpenFolder>, int> openSubfolder(const std::string& name) override {
      const auto failure = folder_.openErrors.find(name);
      if (failure != folder_.openErrors.end()) return std::unexpected(failure->second);
      const auto found = folder_.subfolders.find(name);
      if (found == folder_.subfolders.end()) return std::unexpected(ENOENT);
      return std::make_unique<Opened>(found->second);
    }

   private:
    const FakeFolder& folder_;
    std::size_t next_ = 0;
  };

  FakeFolder root_;
};

inline Entry fileEntry(const char* name, Bytes allocated, std::uint32_t links = 1) {
  return {.name = name, .type = EntryType::file, .links = links, .device = 1, .allocated = allocated};
}

inline Entry folderEntry(const char* name, std::uint64_t device = 1) {
  return {.name = name, .type = EntryType::folder, .device = device};
}

}  // namespace spacemint::support
