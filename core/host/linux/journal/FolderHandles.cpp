#include "core/host/linux/journal/FolderHandles.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <functional>
#include <string_view>

namespace spacemint {

namespace {

std::size_t hashOf(const FolderHandle& handle) {
  const std::size_t bits = std::hash<std::string_view>{}({handle.bytes.data(), handle.bytes.size()});
  return bits + static_cast<std::size_t>(handle.type);
}

}  // namespace

std::optional<FolderHandle> FolderHandle::of(const file_handle& handle) {
  FolderHandle own{.type = handle.handle_type};
  if (handle.handle_bytes > own.bytes.size()) return std::nullopt;
  const auto* bytes = reinterpret_cast<const char*>(handle.f_handle);
  std::copy_n(bytes, handle.handle_bytes, own.bytes.begin());
  return own;
}

std::expected<FolderHandle, int> FolderHandle::of(const FileHandle& folder) {
  alignas(file_handle) std::array<char, sizeof(file_handle) + sizeof bytes> room{};
  auto* handle = reinterpret_cast<file_handle*>(room.data());
  handle->handle_bytes = sizeof bytes;
  int mount = 0;
  if (name_to_handle_at(folder.get(), "", handle, &mount, AT_EMPTY_PATH) != 0) return std::unexpected(errno);
  return of(*handle).value_or(FolderHandle{});
}

auto FolderHandles::hash() const {
  return [this](std::uint32_t at) { return hashOf(handles_[at]); };
}

int FolderHandles::add(const FolderHandle& handle) {
  const int known = find(handle);
  if (known != none) return known;
  auto at = static_cast<std::uint32_t>(handles_.size());
  if (free_.empty()) {
    handles_.push_back(handle);
  } else {
    at = free_.back();
    free_.pop_back();
    handles_[at] = handle;
  }
  table_.insert(at, hash());
  return first_ + static_cast<int>(at);
}

void FolderHandles::drop(int number) {
  const auto at = static_cast<std::uint32_t>(number - first_);
  if (number < first_ || at >= handles_.size() || find(handles_[at]) != number) return;
  table_.erase(at, hash());
  handles_[at] = {};
  free_.push_back(at);
}

int FolderHandles::find(const FolderHandle& handle) const {
  const auto at = table_.find(hashOf(handle), [&](std::uint32_t other) { return handles_[other] == handle; });
  return at == IndexTable::none ? none : first_ + static_cast<int>(at);
}

std::size_t FolderHandles::memory() const {
  return handles_.size() * sizeof(FolderHandle) + free_.capacity() * sizeof(std::uint32_t) + table_.memory();
}

}  // namespace spacemint
