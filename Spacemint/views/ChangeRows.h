#pragma once

#include "Spacemint/views/ListItem.h"
#include "Spacemint/views/UiHost.h"
#include "core/analysis/GrowthTree.h"

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace spacemint {

/// The rows of "What changed": the scanned folder with what grew in it, largest first, then what shrank, and
/// what changed elsewhere on the disk. Main thread only.
class ChangeRows {
 public:
  /// `changed` is called when the person opened or closed a row. The host outlives this.
  ChangeRows(const UiHost& host, std::function<void()> changed);

  /// Takes the current findings.
  void update();

  /// How many items the scanned folder has in this tree.
  std::size_t count() const { return tree_.children.size() + (tree_.smaller > 0 ? 1 : 0); }
  /// With at most so many items of the scanned folder. Empty when nothing changed by enough.
  std::vector<ListItem> items(std::size_t limit);

 private:
  using Items = std::vector<ListItem>;

  bool isEmpty() const;
  double share(Bytes delta) const;
  bool isOpen(const std::string& id, bool isOpenAtFirst) const;
  void makeUnfolding(ListItem& item, bool isOpenAtFirst);
  void addGrowth(const GrowthTree& growth, int depth, bool isOpenAtFirst, std::size_t limit, Items& items);
  ListItem itemOf(const GrowthTree& growth, int depth) const;
  ListItem rootItem() const;
  std::string placeOf(const Shrinkage& shrunk) const;
  void addShrinkage(Items& items);
  void addElsewhere(Items& items) const;
  std::string signedSize(Bytes delta) const;

  const UiHost& host_;
  std::function<void()> changed_;
  GrowthTree tree_;
  /// The bytes that a full bar stands for.
  Bytes whole_ = 0;
  /// The rows that the person opened or closed, by their ids.
  std::map<std::string, bool> isOpen_;
};

}  // namespace spacemint
