#pragma once

#include "core/cleanup/Remeasure.h"
#include "core/tree/Snapshot.h"

#include <map>
#include <memory>
#include <string>

namespace spacemint::ctl {

/// A scan, and the full listings of the folders that were visited: a scan holds only what is large enough to
/// be stored. Values; one thread.
class BrowseTree {
 public:
  struct Folder {
    /// Null if nothing is known of the folder. Valid until the tree changes.
    const Node* node = nullptr;
    /// True if the node's children are all that is in the folder.
    bool isComplete = false;
  };

  const Snapshot& scan() const { return *scan_; }
  /// The scan as it is now, for another thread: what changes later changes a copy.
  std::shared_ptr<const Snapshot> share();
  /// Forgets the listings, which may be older.
  void setScan(Snapshot scan);

  Folder folder(const std::string& path) const;

  /// Keeps the listing of a folder. Forgets others if they are many.
  void keepListing(const std::string& path, Node listing);

  /// Brings the scan and the listings in line with an item's state now, also if the item has no node.
  void put(const Measured& item);
  /// Like `put` for a whole folder, and forgets the listings in it.
  void putFolder(const std::string& path, Node tree);

 private:
  const Node* itemAt(const std::string& path) const;
  void forgetBelow(const std::string& path);
  Snapshot& changeable();

  std::shared_ptr<Snapshot> scan_ = std::make_shared<Snapshot>();
  bool isShared_ = false;
  std::map<std::string, Node> listings_;
};

}  // namespace spacemint::ctl
