#include "ui_kit/Theme.h"

#include <cstring>

namespace spacemint {

void Theme::setDark(bool isDark) {
  if (isDark == isDark_) return;
  isDark_ = isDark;
  Q_EMIT changed();
}

QColor Theme::resolve(const char* name) const {
  for (const Colour& colour : colours) {
    if (std::strcmp(colour.name, name) == 0) return QColor::fromRgb(isDark_ ? colour.dark : colour.light);
  }
  return {};
}

}  // namespace spacemint
