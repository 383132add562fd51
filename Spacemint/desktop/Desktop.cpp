#include "Spacemint/desktop/Desktop.h"

namespace spacemint {

// Here, so that the compiler emits the virtual tables once and not in every file.
Appearance::~Appearance() = default;
Notifier::~Notifier() = default;
StatusItem::~StatusItem() = default;

}  // namespace spacemint
