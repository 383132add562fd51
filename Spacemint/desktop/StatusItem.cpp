#include "Spacemint/desktop/StatusItem.h"

namespace spacemint {

StatusItem::~StatusItem() = default;

}  // namespace spacemint
