#pragma once

#include "core/host/linux/HandleFacts.h"

#include <expected>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

/// Empties an open folder of any size and depth. The number of open handles is bounded; memory grows only
/// with the depth and with the number of subfolders in a batch.
///
/// Every step is relative to an open handle, never to a path. A folder is entered only without following
/// links and only if it is on the same mount. Handles far above the deepest folder are closed; the way back
/// opens ".." and checks that it is the same folder as before. One thread at a time.
class FolderEraser {
 public:
  /// The largest number of open handles, in addition to the first folder's.
  static constexpr std::size_t handleLimit = 32;
  /// How often the eraser retries a folder that another program keeps filling before the removal fails.
  static constexpr int retryLimit = 100;

  /// `path` is the folder's path, used only in failures.
  FolderEraser(std::string path, RemovalProgress& progress);

  /// Removes the contents of `folder`, which must be open for reading; the folder itself stays. Blocks.
  std::expected<void, RemovalFailure> empty(FileHandle folder, const HandleFacts& facts);

 private:
  struct Frame {
    std::string name;
    FileIdentity identity;
    FileHandle handle;
    /// Subfolders that are not removed yet.
    std::vector<std::string> folders;
    int retries = 0;
  };
  using Done = std::expected<void, RemovalFailure>;

  std::expected<bool, RemovalFailure> readBatch(Frame& folder);
  Done removeFile(Frame& folder, const char* name);
  Done enter(const std::string& name);
  Done leave();
  Done reopenParent();
  Done tryAgain(Frame& folder, std::string name);
  void closeShallowest();
  std::unexpected<RemovalFailure> failure(const std::string& name, int errorNumber) const;
  std::string pathOf(std::string_view name) const;

  struct File {
    std::uint64_t inode = 0;
    const char* name = nullptr;
  };

  std::string path_;
  RemovalProgress& progress_;
  Mounted mounted_;
  std::vector<Frame> frames_;
  /// The frames from this index on, and the first frame, have open handles.
  std::size_t firstOpen_ = 1;
  std::unique_ptr<std::byte[]> buffer_;
  std::vector<File> files_;
};

}  // namespace spacemint
