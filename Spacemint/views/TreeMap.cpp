#include "Spacemint/views/PictureItem.h"
#include "Spacemint/views/ShownText.h"
#include "core/base/ByteFormat.h"
#include "core/wording/PictureText.h"
#include "ui_kit/Theme.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QWheelEvent>

namespace spacemint {

namespace {

constexpr qreal inset = 6;

// Draws the text from `x` on; returns where it ends.
qreal drawPart(QPainter& painter, const QString& text, const QRectF& line, qreal x) {
  painter.drawText(QRectF{x, line.y(), line.right() - x, line.height()}, Qt::AlignLeft | Qt::AlignVCenter,
                   text);
  return x + QFontMetricsF{painter.font()}.horizontalAdvance(text);
}

}  // namespace

std::vector<Tile> TreeMap::layOut() const {
  const MapMeasures usual;
  return treeMap(explorer()->folder().pictured(), {0, 0, width(), height()},
                 {.title = scaled(usual.title),
                  .inset = usual.inset,
                  .gap = usual.gap,
                  .frameWidth = scaled(usual.frameWidth),
                  .frameHeight = scaled(usual.frameHeight)});
}

void TreeMap::paintTile(QPainter& painter, const Tile& tile) const {
  if (tile.kind == Tile::Kind::frame) return paintFrame(painter, tile);
  fill(painter, tile);
  paintLabel(painter, tile);
}

void TreeMap::paintFrame(QPainter& painter, const Tile& tile) const {
  const QRectF box{tile.box.x, tile.box.y, tile.box.width, tile.box.height};
  painter.setPen(theme().border());
  painter.setBrush(theme().frame());
  constexpr qreal half = 0.5;
  roundedBox(painter, box.adjusted(half, half, -half, -half));
  const QRectF line{box.x() + inset, box.y(), box.width() - 2 * inset, scaled(MapMeasures{}.title)};
  painter.setFont(font(QFont::DemiBold));
  painter.setPen(theme().ink());
  const QFontMetricsF bold{painter.font()};
  const QString name = bold.elidedText(explorer()->nameOf(tile), Qt::ElideRight, line.width());
  qreal x = drawPart(painter, name, line, line.x()) + inset;
  painter.setFont(font(QFont::Medium));
  const QFontMetricsF metrics{painter.font()};
  // The size, and at the end of the line what came or went, as they fit.
  const QString size = ShownText::plain(ByteFormat::string(tile.size, explorer()->locale()));
  if (x + metrics.horizontalAdvance(size) > line.right()) return;
  painter.setPen(theme().secondary());
  x = drawPart(painter, size, line, x) + inset;
  if (explorer()->colouring() != Explorer::Colouring::Growth) return;
  const QString change = ShownText::plain(PictureText::change(tile.growth(), explorer()->locale()));
  const qreal left = line.right() - metrics.horizontalAdvance(change);
  if (change.isEmpty() || left < x) return;
  painter.setPen(tile.growth() > 0 ? theme().amberInk() : theme().teal());
  drawPart(painter, change, line, left);
}

void TreeMap::paintLabel(QPainter& painter, const Tile& tile) const {
  const bool isWide = tile.box.width >= scaled(40) && tile.box.height >= scaled(18);
  if (!isWide) return;
  painter.setFont(font(QFont::Medium));
  painter.setPen(tile.kind == Tile::Kind::small ? theme().secondary() : ink(tile));
  const QFontMetricsF metrics{painter.font()};
  const qreal lineHeight = scaled(14);
  const qreal top = tile.box.y + std::min<qreal>(3, (tile.box.height - lineHeight) / 2);
  QRectF line{tile.box.x + inset, top, tile.box.width - 2 * inset, lineHeight};
  const auto draw = [&](const QString& text) {
    drawPart(painter, metrics.elidedText(text, Qt::ElideRight, line.width()), line, line.x());
    line.translate(0, lineHeight);
  };
  QString name = explorer()->nameOf(tile);
  if (!name.isEmpty() && tile.kind == Tile::Kind::small) name[0] = name[0].toUpper();
  draw(name);
  if (tile.box.height < scaled(34)) return;
  const QString size = ShownText::plain(ByteFormat::string(tile.size, explorer()->locale()));
  const QString both = ShownText::plain(PictureText::inTile(tile, explorer()->locale()));
  const bool fits = metrics.horizontalAdvance(both) <= line.width();
  draw(fits && explorer()->colouring() == Explorer::Colouring::Growth ? both : size);
}

void TreeMap::choose(std::size_t tile) {
  const std::string item = path(tile);
  if (!item.empty()) explorer()->select(item);
}

void TreeMap::openTile(std::size_t tile) {
  const std::string item = path(tile);
  if (!item.empty()) explorer()->open(item);
}

// A turn away from the person opens the folder under the pointer, a turn towards them the folder above.
void TreeMap::wheelEvent(QWheelEvent* event) {
  constexpr int step = 120;
  wheelTurn_ += event->angleDelta().y();
  if (wheelTurn_ >= step) {
    wheelTurn_ = 0;
    std::size_t tile = tileAt(tiles(), event->position().x(), event->position().y());
    // One level only, so that the person sees where they go.
    while (tile != Tile::none && tiles()[tile].parent != Tile::none) tile = tiles()[tile].parent;
    if (tile != Tile::none) openTile(tile);
  } else if (wheelTurn_ <= -step) {
    wheelTurn_ = 0;
    explorer()->goUp();
  }
}

}  // namespace spacemint
