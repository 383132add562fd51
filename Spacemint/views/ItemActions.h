#pragma once

#include "Spacemint/views/ItemRow.h"
#include "Spacemint/views/UiHost.h"

namespace spacemint {

/// What the user can do with an item of a list. Main thread only.
class ItemActions {
 public:
  /// The host outlives this.
  explicit ItemActions(const UiHost& host) : host_(host) {}

  const UiHost& host() const { return host_; }

  /// Shows it in the file manager.
  void reveal(const std::string& path) const;
  /// Puts its path on the clipboard.
  void copyPath(const std::string& path) const;
  /// Shows a folder in the tab of folders, and for a file the one that it lies in.
  void showInFolders(const ItemRow& row) const;
  /// Asks whether to move it to the Trash, or to delete it where it lies there already.
  void remove(const ItemRow& row) const;

  bool isInTrash(const ItemRow& row) const { return host_.model.isInTrash(row.path); }
  /// Whether the clean-up that the row starts runs.
  bool isBusy(const ItemRow& row) const { return host_.model.cleanups().isRunning(row.id); }

 private:
  const UiHost& host_;
};

}  // namespace spacemint
