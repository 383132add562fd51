#include "Spacemint/desktop/Appearance.h"

namespace spacemint {

Appearance::~Appearance() = default;

}  // namespace spacemint
