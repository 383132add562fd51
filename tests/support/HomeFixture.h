#pragma once

#include "support/ModelFixture.h"
#include "support/TreeBuilder.h"

#include <initializer_list>

namespace spacemint::support {

/// The model over scans of a home folder that were never made: what the tabs show of it.
class HomeFixture : public ModelFixture {
 protected:
  /// Stores a scan of the home folder as made at that time.
  void storeHome(Date date, std::vector<Node> children, Bytes free = 120 * GB) const;
  /// Two scans between which so many folders grew, each less than the one before.
  void storeGrowth(int folders) const;
  /// A chain of folders, the innermost with these children.
  static Node nested(std::string_view path, std::vector<Node> children);
  static std::vector<Node> numbered(const std::string& name, int count, Bytes largest, Bytes step = MB);

  // What lies in the folders themselves, where it is read.

  /// A backup of a device, in the place where they are kept; its tree is that of `backupTree`.
  void addBackup(std::string_view lastDate) const;
  static Node backupTree(Bytes size);
  /// A worktree of the repository "shop", last used then. Absent for one whose repository is gone.
  void addWorktree(const std::string& name, std::optional<Date> lastUsed) const;
  static Node worktreeTree(std::string name, Bytes size);

  // What the tools print.

  static std::string prints(std::string_view text);
  static std::string dockerUsage();
  static std::string ollamaList();
};

}  // namespace spacemint::support
