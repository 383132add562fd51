#pragma once

#include "core/host/linux/HandleFacts.h"

#include <expected>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

/// Empties one open folder, however large and deep, with a bounded number of open handles and bounded memory
/// but for the names on the way down.
///
/// Every step starts from an open handle, never from a path. A folder is entered only without following a
/// link and only while its handle is on the same mount. Handles far above the deepest folder are closed; the
/// way back leads through "..", and only into the very folder it came from.
class FolderEraser {
 public:
  /// How many handles are open at once, the first folder's aside.
  static constexpr std::size_t handleLimit = 32;
  /// How often a folder whose entries keep coming back is tried again before the removal fails.
  static constexpr int retryLimit = 100;

  /// `path` names the folder in failures.
  FolderEraser(std::string path, RemovalProgress& progress);

  /// Removes all that is in `folder`, which was opened for reading. The folder stays.
  std::expected<void, RemovalFailure> empty(FileHandle folder, const HandleFacts& facts);

 private:
  struct Frame {
    std::string name;
    FileIdentity identity;
    FileHandle handle;
    /// Folders of the last batch that are still to be entered.
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
  /// The handles of the frames from here on are open, and that of the first.
  std::size_t firstOpen_ = 1;
  std::unique_ptr<std::byte[]> buffer_;
  std::vector<File> files_;
};

}  // namespace spacemint
