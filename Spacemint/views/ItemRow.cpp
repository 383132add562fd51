#include "Spacemint/views/ItemRow.h"

#include <tuple>

namespace spacemint {

bool ItemRow::looksLike(const ItemRow& other) const {
  const auto look = [](const ItemRow& row) {
    return std::tie(row.path, row.size, row.isDirectory, row.title, row.subtitle, row.sizeText, row.symbol,
                    row.fraction, row.showsChevron, row.canTrash, row.buttonTitle, row.busyTitle);
  };
  return look(*this) == look(other);
}

}  // namespace spacemint
