#include "Spacemint/views/Ui.h"

namespace spacemint {

Ui::Ui(UiHost host) : host_(std::move(host)) {}

}  // namespace spacemint
