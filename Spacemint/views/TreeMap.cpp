#include "Spacemint/views/PictureItem.h"
#include "Spacemint/views/ShownText.h"
#include "core/wording/PictureText.h"
#include "ui_kit/Theme.h"

#include <QFontMetricsF>
#include <QWheelEvent>

namespace spacemint {

namespace {

constexpr qreal inset = 6;

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

// Into a folder: the place of its tile. Out of it: so that the place of the former folder covers all.
QRectF TreeMap::zoomedFrom() const {
  const QRectF& box = zoom().box;
  if (box.isEmpty() || zoom().tile == Tile::none) return box;
  return {-box.x() * width() / box.width(), -box.y() * height() / box.height(),
          width() * width() / box.width(), height() * height() / box.height()};
}

std::vector<PictureItem::TileText> TreeMap::textsOf(const Tile& tile) const {
  return tile.kind == Tile::Kind::frame ? titleOf(tile) : labelOf(tile);
}

// The name, the size, and at the end of the line what came or went, as they fit.
std::vector<PictureItem::TileText> TreeMap::titleOf(const Tile& frame) const {
  const QRectF line{frame.box.x + inset, frame.box.y, frame.box.width - 2 * inset,
                    scaled(MapMeasures{}.title)};
  const QFontMetricsF bold{font(QFont::DemiBold)};
  const QFontMetricsF metrics{font(QFont::Medium)};
  const auto box = [&](qreal x, qreal width) { return QRectF{x, line.y(), width, line.height()}; };
  const QString name = bold.elidedText(explorer()->nameOf(frame), Qt::ElideRight, line.width());
  std::vector<TileText> texts{
      {name, box(line.x(), bold.horizontalAdvance(name)), theme().ink(), QFont::DemiBold}};
  const QString size = sizeOf(frame);
  const QRectF sizeBox = box(texts[0].box.right() + inset, metrics.horizontalAdvance(size));
  if (sizeBox.right() > line.right()) return texts;
  texts.push_back({size, sizeBox, theme().secondary()});
  if (explorer()->colouring() != Explorer::Colouring::Growth) return texts;
  const QString change = ShownText::plain(PictureText::change(frame.growth(), explorer()->locale()));
  const qreal width = metrics.horizontalAdvance(change);
  if (change.isEmpty() || line.right() - width < sizeBox.right() + inset) return texts;
  texts.push_back(
      {change, box(line.right() - width, width), frame.growth() > 0 ? theme().amberInk() : theme().teal()});
  return texts;
}

// The name and, on a second line, the size. A figure that does not fit is left out, because a part of it
// would be another figure.
std::vector<PictureItem::TileText> TreeMap::labelOf(const Tile& tile) const {
  const bool isWide = tile.box.width >= scaled(40) && tile.box.height >= scaled(18);
  if (!isWide) return {};
  const QFontMetricsF metrics{font(QFont::Medium)};
  const QColor color = tile.kind == Tile::Kind::small ? theme().secondary() : ink(tile);
  const qreal height = scaled(14);
  const qreal width = tile.box.width - 2 * inset;
  qreal y = tile.box.y + std::min<qreal>(3, (tile.box.height - height) / 2);
  std::vector<TileText> texts;
  const auto add = [&](const QString& text) {
    texts.push_back({text, {tile.box.x + inset, y, metrics.horizontalAdvance(text), height}, color});
    y += height;
  };
  QString name = explorer()->nameOf(tile);
  if (!name.isEmpty() && tile.kind == Tile::Kind::small) name[0] = name[0].toUpper();
  add(metrics.elidedText(name, Qt::ElideRight, width));
  if (tile.box.height < scaled(34)) return texts;
  const QString both = ShownText::plain(PictureText::inTile(tile, explorer()->locale()));
  const bool isGrowth = explorer()->colouring() == Explorer::Colouring::Growth;
  for (const QString& figures : {isGrowth ? both : sizeOf(tile), sizeOf(tile)}) {
    if (metrics.horizontalAdvance(figures) > width) continue;
    add(figures);
    break;
  }
  return texts;
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
