#include "Spacemint/shell/ItemLook.h"

#include "core/base/ByteFormat.h"
#include "core/base/Translation.h"
#include "core/wording/SupplyText.h"
#include "ui_kit/LogoGeometry.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace spacemint {

namespace {

constexpr std::array sizes{16, 22, 24, 32, 44, 48, 64};

// Strong around black and white, weak around colours such as orange, which can be read on any ground.
QColor haloOf(const QColor& colour) {
  constexpr int middle = 128;
  constexpr float strongest = 0.9F;
  const int fromMiddle = qGray(colour.rgb()) - middle;
  QColor halo{fromMiddle < 0 ? Qt::white : Qt::black};
  halo.setAlphaF(strongest * static_cast<float>(std::abs(fromMiddle)) / middle);
  return halo;
}

// `shape` gives the outline of the picture in a square of that many pixels.
template <class Shape>
QList<QImage> drawn(const QColor& colour, const Shape& shape) {
  QList<QImage> images;
  for (const int size : sizes) {
    QImage image{size, size, QImage::Format_ARGB32_Premultiplied};
    image.fill(Qt::transparent);
    QPainter painter{&image};
    painter.setRenderHint(QPainter::Antialiasing);
    const QPainterPath path = shape(size);
    const double haloWidth = std::max(0.7, size / 32.0);
    QPen halo{haloOf(colour), 2 * haloWidth};
    halo.setJoinStyle(Qt::RoundJoin);
    painter.strokePath(path, halo);
    painter.fillPath(path, colour);
    painter.end();
    images << image;
  }
  return images;
}

// As large as fits into the box. It stands at the box's bottom, on a whole pixel so that it is sharp there.
QPainterPath line(const QRectF& box, const QString& text) {
  QFont font{QStringLiteral("Inter")};
  font.setWeight(QFont::Bold);
  constexpr int reference = 100;
  font.setPixelSize(reference);
  QPainterPath path;
  path.addText({}, font, text);
  const QRectF ink = path.boundingRect();
  const double height = QFontMetricsF{font}.capHeight();
  const double scale = std::min(box.width() / ink.width(), box.height() / height);
  QTransform place;
  place.translate(box.center().x() - ink.center().x() * scale, std::round(box.bottom()));
  place.scale(scale, scale);
  return place.map(path);
}

}  // namespace

StatusText statusText(const StatusFacts& facts) {
  if (!facts.volume) return {};
  const std::string free = ByteFormat::string(facts.volume->free, facts.locale);
  const bool isShown = facts.showsFreeSpace || facts.level != SpaceLevel::ok;
  std::string toolTip =
      i18n("{free} free of {total}",
           {{"free", free}, {"total", ByteFormat::string(facts.volume->total, facts.locale)}});
  if (facts.lowFiles) toolTip += '\n' + SupplyText::title(*facts.lowFiles);
  return {.title = isShown ? " " + free : "", .toolTip = std::move(toolTip)};
}

std::optional<Bytes> badgeOf(const StatusFacts& facts) {
  if (facts.level == SpaceLevel::ok || !facts.volume) return std::nullopt;
  return facts.volume->free;
}

QList<QImage> StatusIcon::logo(const QColor& colour) {
  return drawn(colour, [](double size) {
    const double rim = size / 16;
    QPainterPath path;
    for (const auto& part : LogoGeometry::parts(
             {.x = rim, .y = rim, .width = size - 2 * rim, .height = size - 2 * rim}, false)) {
      const double radius = LogoGeometry::cornerRadius(part.rect);
      path.addRoundedRect(part.rect.x, part.rect.y, part.rect.width, part.rect.height, radius, radius);
    }
    return path;
  });
}

QList<QImage> StatusIcon::figure(const QString& text, const QColor& colour) {
  const QString figure = text.trimmed();
  const qsizetype gap = figure.lastIndexOf(u' ');
  return drawn(colour, [&](double size) {
    const double rim = size / 22;
    const double width = size - 2 * rim;
    if (gap < 0) return line({rim, size * 0.2, width, size * 0.6}, figure);
    // The number gets more height than the unit.
    constexpr double numberPart = 0.54;
    QPainterPath path = line({rim, rim, width, size * numberPart - rim}, figure.left(gap));
    path.addPath(line({rim, size * (numberPart + 0.06), width, size * (0.94 - numberPart) - rim},
                      figure.mid(gap + 1)));
    return path;
  });
}

}  // namespace spacemint
