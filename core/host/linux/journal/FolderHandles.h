#pragma once

#include "core/host/FileHandle.h"
#include "core/host/linux/journal/IndexTable.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <expected>
#include <optional>
#include <vector>

struct file_handle;

namespace spacemint {

/// By what a file system knows a folder, whatever its path is: inode and generation, in most cases.
struct FolderHandle {
  int type = 0;
  std::array<char, 20> bytes{};

  /// Absent where it is larger than those of the file systems that are counted on.
  static std::optional<FolderHandle> of(const file_handle& handle);
  /// Fails with an errno (`name_to_handle_at`).
  static std::expected<FolderHandle, int> of(const FileHandle& folder);

  bool operator==(const FolderHandle&) const = default;
};

/// Gives handles numbers, from the smallest free one on.
class FolderHandles {
 public:
  static constexpr int none = -1;

  explicit FolderHandles(int first) : first_(first) {}

  /// The same handle always gives the same number, until that is dropped.
  int add(const FolderHandle& handle);
  void drop(int number);
  /// `none` for a handle that is not known.
  int find(const FolderHandle& handle) const;

  std::size_t memory() const;

 private:
  auto hash() const;

  int first_;
  std::deque<FolderHandle> handles_;  // grows without room for twice as much
  std::vector<std::uint32_t> free_;
  IndexTable table_;
};

}  // namespace spacemint
