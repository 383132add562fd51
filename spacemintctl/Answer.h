#pragma once

#include "core/scan/DiskScanner.h"
#include "core/tree/Snapshot.h"

#include <string>
#include <vector>

namespace spacemint::ctl {

/// How texts for the user show paths and numbers: the home folder as "~", numbers in the ICU locale.
struct Wording {
  std::string home;
  std::string locale;
};

/// A folder of a scan. `path` is its full path; the snapshot owns the node.
struct FolderItem {
  std::string path;
  const Node* node = nullptr;
};

/// The folders below `root` that account for most of its size, largest first. If one subfolder has 60 % or
/// more of a folder's size, the subfolders are listed in place of the folder; so a result never contains
/// another result.
std::vector<FolderItem> largestFolders(const Node& root, std::size_t limit);

/// A table with a line for each folder: size, share of `whole` (bytes), number of files, path.
std::string folderTable(const std::vector<FolderItem>& folders, Bytes whole, const Wording& wording);

/// A table with a line for each file: size, date of the last change, path, and what a removal frees if that
/// is less (`SharedFiles`, which asks the disk).
std::string fileTable(const std::vector<FileItem>& files, const Wording& wording);

/// The tables of the largest folders and files of a scan, `top` of each.
std::string largestItems(const Snapshot& snapshot, std::size_t top, const Wording& wording);

/// The text that `spacemintctl scan` prints. `whyFull` as in `ScanPlan`.
std::string scanAnswer(const Snapshot& snapshot, std::size_t top, const Wording& wording,
                       const std::string& whyFull);

/// Adds the key "scan" to a stored scan's JSON document: whether the scan was full, and why. `whyFull` as in
/// `ScanPlan`.
std::string withKind(std::string document, const std::string& whyFull);

/// A note about items that a scan could not read, with the first few paths; empty if the scan read
/// everything.
std::string unreadNote(const Unread& unread, const Wording& wording);

}  // namespace spacemint::ctl
