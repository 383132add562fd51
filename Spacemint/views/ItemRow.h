#pragma once

#include "core/base/Bytes.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace spacemint {

/// One row of a list of things that take space.
struct ItemRow {
  /// Tells the rows of one list apart, and is the id of the clean-up that the row starts.
  std::string id;
  /// Where it lies in the scan; empty for what is no item of the disk.
  std::string path = {};
  Bytes size = 0;
  bool isDirectory = false;

  /// The name at the end of the path where there is none.
  std::string title = {};
  std::string subtitle = {};
  /// The size itself where there is none.
  std::string sizeText = {};
  /// What stands for the name where there is none.
  std::string symbol = {};
  /// Its part of a whole, from 0 to 1.
  std::optional<double> fraction = {};
  /// Whether it opens in the list of folders.
  bool showsChevron = false;
  bool canTrash = false;

  std::string buttonTitle = {};
  /// What the button says while it works.
  std::string busyTitle = {};
  std::function<void()> onButton = {};

  /// Rows that it unfolds to.
  std::vector<ItemRow> parts = {};

  /// Whether the other row looks the same, parts apart.
  bool looksLike(const ItemRow& other) const;
};

}  // namespace spacemint
