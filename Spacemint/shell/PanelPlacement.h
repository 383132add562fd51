#pragma once

#include <QRect>

namespace spacemint {

/// Where the panel goes: under a status item at `item`, inside the usable area of its screen.
QRect panelPlacement(const QRect& item, const QRect& usable);

}  // namespace spacemint
