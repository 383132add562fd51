#pragma once

#include "core/base/Bytes.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace spacemint {

/// One item of a list: a file, a folder, or something else that takes space. ItemRows shows a list of them.
struct ListItem {
  /// Unique within the list. It is also the id of the clean-up that the item's button starts.
  std::string id;
  /// The path in the scan; empty for an item that is not on the disk.
  std::string path = {};
  Bytes size = 0;
  bool isDirectory = false;
  /// If empty, the last component of the path is shown.
  std::string title = {};
  std::string subtitle = {};
  /// Shown in place of the size; an empty text hides it.
  std::optional<std::string> sizeText = {};
  /// If empty, the symbol follows from the name.
  std::string symbol = {};
  /// The item's share of a whole, from 0 to 1.
  std::optional<double> fraction = {};
  /// What came or went since an earlier scan, in a column of its own.
  std::string change = {};
  /// The item shrank: its change, or else its size, is shown in the colour for that.
  bool hasShrunk = false;
  /// A word after the title, such as "new".
  std::string tag = {};
  /// The item is being measured, so its size grows.
  bool isGrowing = false;
  /// How many items of the list this one is a part of.
  int depth = 0;
  /// For an item that unfolds to further items of the list: whether these are in the list now.
  std::optional<bool> isUnfolded = {};
  std::function<void()> onUnfold = {};
  /// Whether a click opens the item in the list of folders.
  bool showsChevron = false;
  /// Whether the list offers to remove the item. The deletion guard decides as well.
  bool canTrash = false;
  std::string buttonTitle = {};
  /// The title of the button while its clean-up runs.
  std::string busyTitle = {};
  std::function<void()> onButton = {};
  /// The items that this item unfolds to.
  std::vector<ListItem> parts = {};
};

}  // namespace spacemint
