#pragma once

#include "core/scan/DiskScanner.h"
#include "core/tree/Snapshot.h"

#include <string>
#include <vector>

namespace spacemint::ctl {

/// How an answer is worded for a person.
struct Wording {
  std::string home;
  std::string locale;
};

/// A folder of a scan with its full path. The node belongs to the snapshot.
struct FolderItem {
  std::string path;
  const Node* node = nullptr;
};

/// The folders below `root` that explain most of its size, largest first. No folder is listed together with a
/// folder inside it: a folder of which one subfolder is 60 % or more gives way to its subfolders.
std::vector<FolderItem> largestFolders(const Node& root, std::size_t limit);

/// Size, share of `whole`, number of files and path, a line a folder.
std::string folderTable(const std::vector<FolderItem>& folders, Bytes whole, const Wording& wording);

/// Size, date of the last change and path, a line a file.
std::string fileTable(const std::vector<FileItem>& files, const Wording& wording);

/// The text that `spacemintctl scan` prints. `whyFull` as in `ScanPlan`.
std::string scanAnswer(const Snapshot& snapshot, std::size_t top, const Wording& wording,
                       const std::string& whyFull);

/// A stored scan's JSON document with the key "scan" added: whether everything was walked, and why.
std::string withKind(std::string document, const std::string& whyFull);

/// What a scan could not read, with the first few paths; empty when it read everything.
std::string unreadNote(const DiskScanner::Unread& unread, const Wording& wording);

}  // namespace spacemint::ctl
