#include "Spacemint/views/PictureItem.h"
#include "ui_kit/Theme.h"

#include <QAccessible>
#include <QFontMetricsF>
#include <QKeyEvent>
#include <QPainter>

#include <algorithm>

namespace spacemint {

Icicle::Icicle(QQuickItem* parent) : PictureItem(parent) {
  setActiveFocusOnTab(true);
  connect(this, &PictureItem::tilesChanged, this, [this] {
    // After the way out, the block of the folder that was left.
    current_ = zoom().tile < tiles().size() ? zoom().tile : 0;
    if (hasActiveFocus()) point(current_);
    Q_EMIT currentChanged();
  });
}

std::vector<Tile> Icicle::layOut() const {
  return icicle(explorer()->folder().pictured(), {.width = width(), .row = scaled(IcicleMeasures{}.row)},
                explorer()->volumeParts());
}

QVariantList Icicle::blocks() const {
  QVariantList blocks;
  for (std::size_t i = 0; i < tiles().size(); ++i) {
    blocks << QVariantMap{{QStringLiteral("frame"), frameOf(i)},
                          {QStringLiteral("spoken"), explorer()->spoken(tiles()[i])}};
  }
  return blocks;
}

int Icicle::rows() const {
  const auto deepest = std::ranges::max_element(tiles(), {}, &Tile::depth);
  return deepest != tiles().end() ? static_cast<int>(deepest->depth) + 1 : 0;
}

void Icicle::setMove(qreal move) {
  move_ = move;
  update();
  Q_EMIT moveChanged();
}

void Icicle::setStrength(qreal strength) {
  strength_ = strength;
  update();
  Q_EMIT moveChanged();
}

// The folder that was opened or left moves between its block and the first row; all others appear.
void Icicle::paintStep(QPainter& painter, std::size_t index) const {
  const bool isOut = zoom().tile != Tile::none;
  const bool moves = move_ < 1 && !zoom().box.isEmpty();
  const std::size_t moving = !moves ? Tile::none : isOut ? zoom().tile : 0;
  if (index != moving) {
    painter.setOpacity(strength_);
    paintTile(painter, tiles()[index]);
  }
  if (!moves || index + 1 < tiles().size()) return;
  // Above all others.
  Tile tile = tiles()[moving];
  const QRectF from = isOut ? QRectF{0, 0, width(), tile.box.height} : zoom().box;
  const auto between = [this](qreal a, qreal b) { return a + (b - a) * move_; };
  tile.box = {between(from.x(), tile.box.x), between(from.y(), tile.box.y),
              between(from.width(), tile.box.width), tile.box.height};
  painter.setOpacity(1);
  paintTile(painter, tile);
}

std::vector<PictureItem::TileText> Icicle::textsOf(const Tile& tile) const {
  constexpr qreal inset = 6;
  if (tile.box.width < scaled(40) || tile.kind == Tile::Kind::notInFiles) return {};
  const bool isFaint = tile.kind == Tile::Kind::free || tile.kind == Tile::Kind::small;
  const QColor color = isFaint ? theme().secondary() : ink(tile);
  const QFont::Weight weight = tile.depth == 0 ? QFont::DemiBold : QFont::Medium;
  const QFontMetricsF metrics{font(weight)};
  const qreal left = tile.box.x + inset;
  qreal right = tile.box.x + tile.box.width - inset;
  const qreal height = scaled(14);
  const qreal y = tile.box.y + (tile.box.height - height) / 2;
  const auto box = [&](qreal x, qreal width) { return QRectF{x, y, width, height}; };
  std::vector<TileText> texts;
  if (tile.box.width >= scaled(96)) {
    const QString size = sizeOf(tile);
    const qreal width = metrics.horizontalAdvance(size);
    texts.push_back({size, box(right - width, width), color, weight});
    right -= width + inset;
  }
  const QString name = metrics.elidedText(explorer()->nameOf(tile), Qt::ElideRight, right - left);
  texts.push_back({name, box(left, metrics.horizontalAdvance(name)), color, weight});
  return texts;
}

// The first row leads up, a folder is opened, and all else becomes the current row of the list.
void Icicle::choose(std::size_t tile) {
  const Tile& chosen = tiles()[tile];
  if (chosen.kind == Tile::Kind::folder) return explorer()->goUp();
  if (chosen.kind == Tile::Kind::notInFiles) return Q_EMIT explorer()->notInFilesWanted();
  if (chosen.kind == Tile::Kind::files || chosen.kind == Tile::Kind::free) return;
  if (chosen.node != nullptr && chosen.node->isDirectory) return explorer()->open(path(tile));
  const Node& folder = *explorer()->folder().node;
  const Node* child = chosen.depth > 1 ? tiles()[chosen.parent].node : chosen.node;
  // What is too small is at the end of the folder.
  Q_EMIT childWanted(
      static_cast<int>(child != nullptr ? child - folder.children.data() : std::ssize(folder.children) - 1));
}

void Icicle::press(int block) {
  if (block >= 0 && block < std::ssize(tiles())) choose(static_cast<std::size_t>(block));
}

void Icicle::announce(QObject* item) {
  if (item == nullptr) return;
  QAccessibleEvent event(item, QAccessible::Focus);
  QAccessible::updateAccessibility(&event);
}

// The keyboard

std::size_t Icicle::besides(int step) const {
  const auto depth = tiles()[current_].depth;
  for (std::size_t i = current_ + static_cast<std::size_t>(step); i < tiles().size();
       i += static_cast<std::size_t>(step)) {
    if (tiles()[i].depth == depth) return i;
  }
  return current_;
}

std::size_t Icicle::below() const {
  const auto& all = tiles();
  const auto child = std::ranges::find(all, current_, &Tile::parent);
  return child != all.end() ? static_cast<std::size_t>(child - all.begin()) : current_;
}

void Icicle::moveTo(std::size_t tile) {
  current_ = tile;
  point(tile);
  Q_EMIT currentChanged();
}

void Icicle::keyPressEvent(QKeyEvent* event) {
  if (current_ >= tiles().size()) return event->ignore();
  const bool isBack = event->key() == Qt::Key_Backspace ||
                      (event->key() == Qt::Key_Left && (event->modifiers() & Qt::AltModifier) != 0);
  if (isBack) return explorer()->goUp();
  switch (event->key()) {
    case Qt::Key_Left:
      return moveTo(besides(isMirrored() ? 1 : -1));
    case Qt::Key_Right:
      return moveTo(besides(isMirrored() ? -1 : 1));
    case Qt::Key_Down:
      return moveTo(below());
    case Qt::Key_Up:
      return moveTo(tiles()[current_].parent != Tile::none ? tiles()[current_].parent : current_);
    case Qt::Key_Return:
    case Qt::Key_Enter:
      return choose(current_);
    default:
      event->ignore();
  }
}

void Icicle::focusInEvent(QFocusEvent* event) {
  PictureItem::focusInEvent(event);
  if (event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason) moveTo(current_);
}

void Icicle::focusOutEvent(QFocusEvent* event) {
  PictureItem::focusOutEvent(event);
  point(Tile::none);
}

}  // namespace spacemint
