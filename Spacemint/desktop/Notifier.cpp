#include "Spacemint/desktop/Notifier.h"

namespace spacemint {

Notifier::~Notifier() = default;

}  // namespace spacemint
