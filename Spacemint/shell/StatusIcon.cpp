#include "Spacemint/shell/StatusIcon.h"

#include "ui_kit/LogoGeometry.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPainter>

#include <array>
#include <functional>

namespace spacemint {

namespace {

constexpr std::array sizes{16, 22, 24, 32, 44, 48, 64};

QList<QImage> drawn(const QColor& colour, const std::function<void(QPainter&, double size)>& draw) {
  QList<QImage> images;
  for (const int size : sizes) {
    QImage image{size, size, QImage::Format_ARGB32_Premultiplied};
    image.fill(Qt::transparent);
    QPainter painter{&image};
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    painter.setPen(colour);
    painter.setBrush(colour);
    draw(painter, size);
    painter.end();
    images << image;
  }
  return images;
}

/// As large as fits the box in both directions.
void drawLine(QPainter& painter, const QRectF& box, const QString& text) {
  QFont font{QStringLiteral("Inter")};
  font.setWeight(QFont::Bold);
  font.setHintingPreference(QFont::PreferFullHinting);
  constexpr double reference = 100;
  font.setPixelSize(static_cast<int>(reference));
  const QFontMetricsF metrics{font};
  const QRectF ink = metrics.tightBoundingRect(text);
  const double scale = std::min(box.width() / ink.width(), box.height() / metrics.capHeight());
  font.setPixelSize(std::max(1, static_cast<int>(reference * scale)));
  painter.setFont(font);
  const QFontMetricsF fitted{font};
  const double width = fitted.horizontalAdvance(text);
  painter.drawText(QPointF{box.center().x() - width / 2, box.bottom()}, text);
}

}  // namespace

QList<QImage> StatusIcon::logo(const QColor& colour) {
  return drawn(colour, [](QPainter& painter, double size) {
    painter.setPen(Qt::NoPen);
    for (const auto& part : LogoGeometry::parts({.x = 0, .y = 0, .width = size, .height = size}, false)) {
      const double radius = LogoGeometry::cornerRadius(part.rect);
      painter.drawRoundedRect(QRectF{part.rect.x, part.rect.y, part.rect.width, part.rect.height}, radius,
                              radius);
    }
  });
}

QList<QImage> StatusIcon::figure(const QString& text, const QColor& colour) {
  const QString figure = text.trimmed();
  const qsizetype gap = figure.lastIndexOf(u' ');
  return drawn(colour, [&](QPainter& painter, double size) {
    // The number has the larger half. A text without a unit gets all of it.
    constexpr double numberPart = 0.54;
    const double rim = size / 16;
    const double width = size - rim;
    if (gap < 0) {
      drawLine(painter, {rim / 2, size * 0.2, width, size * 0.6}, figure);
      return;
    }
    drawLine(painter, {rim / 2, rim, width, size * numberPart - rim}, figure.left(gap));
    drawLine(painter, {rim / 2, size * numberPart + rim, width, size * (1 - numberPart) - 2 * rim},
             figure.mid(gap + 1));
  });
}

}  // namespace spacemint
