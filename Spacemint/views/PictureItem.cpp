#include "Spacemint/views/PictureItem.h"

#include "Spacemint/views/ShownText.h"
#include "core/analysis/Age.h"
#include "core/base/ByteFormat.h"
#include "ui_kit/Theme.h"
#include "ui_kit/UiKit.h"

#include <QPainter>
#include <QRegion>

#include <algorithm>
#include <array>
#include <cmath>

namespace spacemint {

namespace {

constexpr qreal roundFrom = 16;
constexpr qreal radius = 4;
constexpr qreal dimmed = 0.35;
constexpr qreal textGap = 7;

QRectF rectOf(const Box& box) {
  return {box.x, box.y, box.width, box.height};
}

void roundedBox(QPainter& painter, const QRectF& box) {
  const bool isRound = box.width() >= roundFrom && box.height() >= roundFrom;
  painter.setRenderHint(QPainter::Antialiasing, isRound || painter.pen().style() != Qt::NoPen);
  if (isRound) {
    painter.drawRoundedRect(box, radius, radius);
  } else {
    painter.drawRect(box);
  }
}

// The step of the age colours, newest first; absent if the age is unknown.
std::optional<std::size_t> ageStep(const Node& node, Date now) {
  const auto newest = newestChange(node);
  if (!newest) return std::nullopt;
  constexpr std::array days{30.0, 365.0, 3 * 365.0};
  return static_cast<std::size_t>(
      std::ranges::count_if(days, [&](double limit) { return isOlder(*newest, now, limit); }));
}

}  // namespace

PictureItem::PictureItem(QQuickItem* parent) : QQuickPaintedItem(parent) {
  setAcceptHoverEvents(true);
  setAcceptedMouseButtons(Qt::LeftButton | Qt::RightButton);
  connect(this, &PictureItem::tilesChanged, this, &PictureItem::framesChanged);
}

void PictureItem::setExplorer(Explorer* explorer) {
  if (explorer == explorer_) return;
  if (explorer_ != nullptr) explorer_->disconnect(this);
  explorer_ = explorer;
  connect(explorer_, &Explorer::changed, this, &PictureItem::rebuild);
  connect(explorer_, &Explorer::selectionChanged, this, &PictureItem::framesChanged);
  connect(explorer_, &Explorer::pointedChanged, this, &PictureItem::framesChanged);
  rebuild();
  Q_EMIT explorerChanged();
}

void PictureItem::setMirrored(bool isMirrored) {
  if (isMirrored == isMirrored_) return;
  isMirrored_ = isMirrored;
  rebuild();
  Q_EMIT mirroredChanged();
}

void PictureItem::componentComplete() {
  QQuickPaintedItem::componentComplete();
  isComplete_ = true;
  connect(&theme(), &Theme::isDarkChanged, this, [this] { update(); });
  connect(&theme(), &Theme::textScaleChanged, this, &PictureItem::rebuild);
  rebuild();
}

void PictureItem::geometryChange(const QRectF& now, const QRectF& before) {
  QQuickPaintedItem::geometryChange(now, before);
  if (now.size() != before.size()) rebuild();
}

void PictureItem::rebuild() {
  if (!isComplete_ || explorer_ == nullptr) return;
  const std::string before = folder_.path;
  const std::vector<Tile> tilesBefore = std::exchange(tiles_, {});
  const SharedSnapshot kept = std::exchange(folder_, explorer_->folder()).snapshot;
  if (folder_.node != nullptr && width() > 0 && height() > 0) tiles_ = layOut();
  if (isMirrored_) {
    for (Tile& tile : tiles_) tile.box.x = width() - tile.box.x - tile.box.width;
  }
  const bool isZoom = before != folder_.path && kept == folder_.snapshot;
  zoom_ = isZoom ? zoomFrom(before, tilesBefore) : Zoom{};
  under_ = Tile::none;
  update();
  Q_EMIT tilesChanged();
  if (!zoom_.box.isEmpty()) Q_EMIT zoomed();
}

PictureItem::Zoom PictureItem::zoomFrom(const std::string& before,
                                        const std::vector<Tile>& tilesBefore) const {
  Zoom zoom;
  if (const auto into = pathBelow(folder_.path, before)) {
    const Node* old = folder_.snapshot->nodeAt(before);
    const std::size_t from = old != nullptr ? spacemint::tileOf(tilesBefore, *old, *into) : Tile::none;
    if (from != Tile::none) zoom.box = rectOf(tilesBefore[from].box);
  } else if (pathBelow(before, folder_.path)) {
    zoom.tile = tileOfItem(before);
    zoom.box = frameOf(zoom.tile);
  }
  return zoom;
}

const Theme& PictureItem::theme() const {
  return UiKit::theme(*qmlEngine(this));
}

qreal PictureItem::scaled(qreal length) const {
  return std::round(length * theme().textScale());
}

QFont PictureItem::font(QFont::Weight weight) const {
  QFont font{theme().sansFamily()};
  constexpr qreal size = 11;
  font.setPixelSize(static_cast<int>(scaled(size)));
  font.setWeight(weight);
  return font;
}

std::string PictureItem::path(std::size_t tile) const {
  return pathOf(tiles_, tile, folder_.path);
}

QRectF PictureItem::frameOf(std::size_t tile) const {
  return tile < tiles_.size() ? rectOf(tiles_[tile].box) : QRectF{};
}

std::size_t PictureItem::tileOfItem(const std::string& itemPath) const {
  const auto below = folder_.node != nullptr ? pathBelow(itemPath, folder_.path) : std::nullopt;
  return below ? spacemint::tileOf(tiles_, *folder_.node, *below) : Tile::none;
}

QRectF PictureItem::selectedFrame() const {
  return explorer_ != nullptr ? frameOf(tileOfItem(explorer_->selected())) : QRectF{};
}

std::size_t PictureItem::pointedTile() const {
  if (under_ < tiles_.size()) return under_;
  return explorer_ != nullptr ? tileOfItem(explorer_->pointed()) : Tile::none;
}

// The pointer and the keyboard

void PictureItem::point(std::size_t tile) {
  if (tile == under_ || explorer_ == nullptr) return;
  under_ = tile;
  explorer_->point(path(tile), tile < tiles_.size() ? &tiles_[tile] : nullptr);
}

void PictureItem::hoverMoveEvent(QHoverEvent* event) {
  point(tileUnder(event->position()));
}

void PictureItem::hoverLeaveEvent(QHoverEvent* /*event*/) {
  point(Tile::none);
}

void PictureItem::mousePressEvent(QMouseEvent* event) {
  const std::size_t tile = tileUnder(event->position());
  if (tile == Tile::none) return event->ignore();
  if (event->button() != Qt::RightButton) return;
  const std::string item = path(tile);
  if (item.empty()) return;
  explorer_->select(item);
  Q_EMIT menuWanted(event->position().x(), event->position().y());
}

void PictureItem::mouseReleaseEvent(QMouseEvent* event) {
  const std::size_t tile = tileUnder(event->position());
  if (event->button() == Qt::LeftButton && tile != Tile::none) choose(tile);
}

void PictureItem::mouseDoubleClickEvent(QMouseEvent* event) {
  const std::size_t tile = tileUnder(event->position());
  if (event->button() == Qt::LeftButton && tile != Tile::none) openTile(tile);
}

// The painting

void PictureItem::paint(QPainter* painter) {
  painter->setRenderHint(QPainter::TextAntialiasing);
  const bool showsFound = this->showsFound();
  for (std::size_t i = 0; i < tiles_.size(); ++i) {
    const Node* node = tiles_[i].node;
    const bool isDimmed = showsFound && (node == nullptr || !explorer_->isFound(*node));
    painter->setOpacity(isDimmed ? dimmed : 1);
    paintStep(*painter, i);
  }
}

void PictureItem::paintTile(QPainter& painter, const Tile& tile) const {
  std::vector<TileText> texts = textsOf(tile);
  if (isMirrored_) {
    const qreal ends = 2 * tile.box.x + tile.box.width;
    for (TileText& each : texts) each.box.moveLeft(ends - each.box.right());
  }
  fill(painter, tile, texts);
  for (const TileText& each : texts) {
    painter.setFont(font(each.weight));
    painter.setPen(each.color);
    painter.drawText(each.box, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine | Qt::TextDontClip,
                     each.text);
  }
}

QString PictureItem::sizeOf(const Tile& tile) const {
  return ShownText::plain(ByteFormat::string(tile.size, explorer_->locale()));
}

QColor PictureItem::ink(const Tile& tile) const {
  const bool isAged = showsAge() && tile.node != nullptr && tile.kind != Tile::Kind::frame;
  constexpr std::size_t oldest = 3;
  return isAged && ageStep(*tile.node, explorer_->now()) == oldest ? theme().canvas() : theme().ink();
}

void PictureItem::fill(QPainter& painter, const Tile& tile, std::span<const TileText> texts) const {
  const QRectF box = rectOf(tile.box);
  if (tile.kind == Tile::Kind::small || tile.kind == Tile::Kind::free || tile.kind == Tile::Kind::frame) {
    painter.setPen(theme().border());
    painter.setBrush(tile.kind == Tile::Kind::small   ? theme().well()
                     : tile.kind == Tile::Kind::frame ? theme().frame()
                                                      : theme().canvas());
    constexpr qreal half = 0.5;
    return roundedBox(painter, box.adjusted(half, half, -half, -half));
  }
  if (tile.kind == Tile::Kind::notInFiles) return hatch(painter, box);
  if (showsAge() && tile.node != nullptr) {
    fillAge(painter, tile);
  } else {
    fillGrowth(painter, tile, texts);
  }
}

void PictureItem::fillGrowth(QPainter& painter, const Tile& tile, std::span<const TileText> texts) const {
  const QRectF box = rectOf(tile.box);
  const Bytes growth = tile.growth();
  const double share = tile.size > 0 ? static_cast<double>(growth) / static_cast<double>(tile.size) : 0;
  const qreal came = growth > 0 ? box.height() * share : 0;
  constexpr double shrankFrom = -0.1;
  const bool shrank = share < shrankFrom;
  painter.setPen(Qt::NoPen);
  painter.setBrush(shrank ? theme().shrunk() : theme().block());
  roundedBox(painter, box);
  if (shrank) painter.fillRect(QRectF{box.x(), box.y(), box.width(), 2}, theme().teal());
  if (came < 1) return;
  const QRectF from{box.x(), box.bottom() - came, box.width(), came};
  painter.save();
  painter.setClipRect(from);
  painter.setBrush(theme().grown());
  roundedBox(painter, box);
  if (came < box.height() - 1) {
    // The edge of what came stops before a text.
    QRegion edge{QRectF{from.x(), std::round(from.y()), from.width(), 1}.toAlignedRect()};
    for (const TileText& each : texts) edge -= each.box.adjusted(-textGap, 0, textGap, 0).toAlignedRect();
    for (const QRect& part : edge) painter.fillRect(part, theme().amberInk());
  }
  painter.restore();
}

void PictureItem::fillAge(QPainter& painter, const Tile& tile) const {
  const std::array colours{theme().age1(), theme().age2(), theme().age3(), theme().age4()};
  const auto step = ageStep(*tile.node, explorer_->now());
  QRectF box = rectOf(tile.box);
  painter.setPen(Qt::NoPen);
  if (step == std::size_t{0}) {
    QColor edge = theme().tertiary();
    constexpr qreal faint = 0.5;
    edge.setAlphaF(faint);
    painter.setPen(edge);
    box.adjust(faint, faint, -faint, -faint);
  }
  painter.setBrush(step ? colours.at(*step) : theme().block());
  roundedBox(painter, box);
}

void PictureItem::hatch(QPainter& painter, const QRectF& box) const {
  painter.save();
  painter.setClipRect(box);
  painter.setRenderHint(QPainter::Antialiasing);
  constexpr qreal line = 1.2;
  constexpr qreal every = 5;
  painter.setPen(QPen{theme().secondary(), line});
  for (qreal x = box.x() - box.height(); x < box.right(); x += every)
    painter.drawLine(QPointF{x, box.bottom()}, QPointF{x + box.height(), box.y()});
  painter.restore();
  painter.setPen(theme().secondary());
  painter.setBrush(Qt::NoBrush);
  constexpr qreal half = 0.5;
  roundedBox(painter, box.adjusted(half, half, -half, -half));
}

}  // namespace spacemint
