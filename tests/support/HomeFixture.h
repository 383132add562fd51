#pragma once

#include "support/ModelFixture.h"
#include "support/TreeBuilder.h"

#include <initializer_list>

namespace spacemint::support {

/// The model with invented scans of a home folder, for the tabs.
class HomeFixture : public ModelFixture {
 protected:
  /// Stores a scan of the home folder with this date.
  void storeHome(Date date, std::vector<Node> children, Bytes free = 120 * GB) const;
  /// Stores two scans between which this many folders grew, each less than the one before it.
  void storeGrowth(int folders) const;
  /// A chain of folders; the innermost has these children.
  static Node nested(std::string_view path, std::vector<Node> children);
  static std::vector<Node> numbered(const std::string& name, int count, Bytes largest, Bytes step = MB);

  // The files that the analysis reads itself.

  /// A backup of a device; `backupTree` is its part of the scan.
  void addBackup(std::string_view lastDate) const;
  static Node backupTree(Bytes size);
  /// A worktree of the repository "shop". Without a date its repository is gone.
  void addWorktree(const std::string& name, std::optional<Date> lastUsed) const;
  static Node worktreeTree(std::string name, Bytes size);

  // The output of the tools.

  static std::string prints(std::string_view text);
  static std::string dockerUsage();
  static std::string ollamaList();
};

}  // namespace spacemint::support
