#include "ui_kit/LogoMark.h"

#include "ui_kit/LogoGeometry.h"

#include <QPainter>

namespace spacemint {

LogoMark::LogoMark(QQuickItem* parent) : QQuickPaintedItem(parent) {
  setAntialiasing(true);
  connect(this, &LogoMark::coloursChanged, this, [this] { update(); });
}

void LogoMark::paint(QPainter* painter) {
  painter->setPen(Qt::NoPen);
  for (const auto& [rect, isCeiling] : LogoGeometry::parts({0, 0, width(), height()}, false)) {
    const double radius = LogoGeometry::cornerRadius(rect);
    painter->setBrush(isCeiling ? ceiling_ : ink_);
    painter->drawRoundedRect(QRectF(rect.x, rect.y, rect.width, rect.height), radius, radius);
  }
}

}  // namespace spacemint
