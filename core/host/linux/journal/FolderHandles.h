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

/// The file handle of a folder (`name_to_handle_at`): usually inode and generation. It does not depend on the
/// folder's path.
struct FolderHandle {
  int type = 0;
  std::array<char, 20> bytes{};

  /// Absent when the handle is larger than those of the file systems that a mark is used on.
  static std::optional<FolderHandle> of(const file_handle& handle);
  /// Fails with an errno (`name_to_handle_at`).
  static std::expected<FolderHandle, int> of(const FileHandle& folder);

  bool operator==(const FolderHandle&) const = default;
};

/// Numbers the handles of the watched folders, from a first number on. One thread at a time.
class FolderHandles {
 public:
  static constexpr int none = -1;

  explicit FolderHandles(int first) : first_(first) {}

  /// The number of a handle; the smallest free number for a new handle.
  int add(const FolderHandle& handle);
  void drop(int number);
  /// The number of a handle, or `none`.
  int find(const FolderHandle& handle) const;

  /// Bytes held.
  std::size_t memory() const;

 private:
  auto hash() const;

  int first_;
  std::deque<FolderHandle> handles_;  // a vector would reserve up to twice the memory
  std::vector<std::uint32_t> free_;
  IndexTable table_;
};

}  // namespace spacemint
