#pragma once

#include "Spacemint/views/Explorer.h"

#include <QColor>
#include <QFont>
#include <QQuickPaintedItem>
#include <QRectF>

#include <span>
#include <vector>

namespace spacemint {

class Theme;

/// A picture of the open folder, painted as a whole. It knows which tile is under the pointer; the frames of
/// the tile under the pointer and of the selected one are left to QML, so that a hover paints nothing anew.
/// Main thread only.
class PictureItem : public QQuickPaintedItem {
  Q_OBJECT
  QML_ANONYMOUS
  Q_PROPERTY(spacemint::Explorer* explorer READ explorer WRITE setExplorer NOTIFY explorerChanged REQUIRED)
  /// Whether the picture begins at the right, as the language does.
  Q_PROPERTY(bool mirrored READ isMirrored WRITE setMirrored NOTIFY mirroredChanged)
  // The places of these tiles; empty if there are none.
  Q_PROPERTY(QRectF pointedFrame READ pointedFrame NOTIFY framesChanged)
  Q_PROPERTY(QRectF selectedFrame READ selectedFrame NOTIFY framesChanged)
 public:
  explicit PictureItem(QQuickItem* parent = nullptr);

  Explorer* explorer() const { return explorer_; }
  void setExplorer(Explorer* explorer);
  bool isMirrored() const { return isMirrored_; }
  void setMirrored(bool isMirrored);
  QRectF pointedFrame() const { return frameOf(pointedTile()); }
  QRectF selectedFrame() const;

  void paint(QPainter* painter) final;

 Q_SIGNALS:
  void explorerChanged();
  void mirroredChanged();
  void framesChanged();
  void tilesChanged();
  /// Another folder of the same scan was opened; it is in the picture of before, or the other way round.
  void zoomed();
  /// The menu of the selected item is wanted at this point.
  void menuWanted(qreal x, qreal y);

 protected:
  /// A text in a tile, on one line.
  struct TileText {
    QString text;
    QRectF box;
    QColor color;
    QFont::Weight weight = QFont::Medium;
  };

  /// The way from one folder to another.
  struct Zoom {
    /// The place of the folder that was opened in the picture of before; on the way out the place of the
    /// former folder in the picture of now.
    QRectF box;
    /// The index of the folder on the way out; `Tile::none` on the way in.
    std::size_t tile = Tile::none;
  };

  virtual std::vector<Tile> layOut() const = 0;
  virtual std::vector<TileText> textsOf(const Tile& tile) const = 0;
  /// A step of the painting: paints the tile, and what else belongs above it.
  virtual void paintStep(QPainter& painter, std::size_t index) const { paintTile(painter, tiles_[index]); }
  void paintTile(QPainter& painter, const Tile& tile) const;
  /// Whether the colours show the age, and not what came.
  virtual bool showsAge() const { return explorer_->colouring() == Explorer::Colouring::Age; }
  /// Whether what a search did not find is faint.
  virtual bool showsFound() const { return explorer_->isSearching(); }
  /// A click on the tile.
  virtual void choose(std::size_t tile) = 0;
  virtual void openTile(std::size_t tile) = 0;

  const std::vector<Tile>& tiles() const { return tiles_; }
  const Zoom& zoom() const { return zoom_; }
  std::string path(std::size_t tile) const;
  const Theme& theme() const;
  QFont font(QFont::Weight weight) const;
  qreal scaled(qreal length) const;
  QRectF frameOf(std::size_t tile) const;
  std::size_t tileOfItem(const std::string& itemPath) const;
  virtual std::size_t pointedTile() const;
  void point(std::size_t tile);

  QColor ink(const Tile& tile) const;
  QString sizeOf(const Tile& tile) const;

  void componentComplete() override;
  void geometryChange(const QRectF& now, const QRectF& before) override;
  void hoverMoveEvent(QHoverEvent* event) override;
  void hoverLeaveEvent(QHoverEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;

 private:
  void rebuild();
  Zoom zoomFrom(const std::string& before, const std::vector<Tile>& tilesBefore) const;
  /// Fills the tile: what is there, from below what came, or the age.
  void fill(QPainter& painter, const Tile& tile, std::span<const TileText> texts) const;
  void hatch(QPainter& painter, const QRectF& box) const;
  void fillGrowth(QPainter& painter, const Tile& tile, std::span<const TileText> texts) const;
  void fillAge(QPainter& painter, const Tile& tile) const;
  std::size_t tileUnder(const QPointF& point) const { return tileAt(tiles_, point.x(), point.y()); }

  Explorer* explorer_ = nullptr;
  std::vector<Tile> tiles_;
  /// Keeps the nodes that the tiles point to.
  ShownFolder folder_;
  Zoom zoom_;
  std::size_t under_ = Tile::none;
  bool isComplete_ = false;
  bool isMirrored_ = false;
};

// The full name of the base class: the tools of QML find it by no other.

/// The open folder as a tree map: its items, and what is in them.
class TreeMap : public spacemint::PictureItem {
  Q_OBJECT
  QML_ELEMENT
  /// The place of the whole picture at the beginning of a zoom.
  Q_PROPERTY(QRectF zoomedFrom READ zoomedFrom NOTIFY zoomed)
 public:
  using PictureItem::PictureItem;

  QRectF zoomedFrom() const;

 protected:
  std::vector<Tile> layOut() const override;
  std::vector<TileText> textsOf(const Tile& tile) const override;
  void choose(std::size_t tile) override;
  void openTile(std::size_t tile) override;
  void wheelEvent(QWheelEvent* event) override;

 private:
  std::vector<TileText> titleOf(const Tile& frame) const;
  std::vector<TileText> labelOf(const Tile& tile) const;

  int wheelTurn_ = 0;
};

/// The open folder as three rows: itself, its items, and theirs.
class Icicle : public spacemint::PictureItem {
  Q_OBJECT
  QML_ELEMENT
  /// The tiles for screen readers, each with `frame` and `spoken`.
  Q_PROPERTY(QVariantList blocks READ blocks NOTIFY tilesChanged)
  /// How many rows there are: two if no item of the folder is a folder.
  Q_PROPERTY(int rows READ rows NOTIFY tilesChanged)
  /// The index of the tile that the keyboard is at.
  Q_PROPERTY(int current READ current NOTIFY currentChanged)
  Q_PROPERTY(QRectF currentFrame READ currentFrame NOTIFY currentChanged)
  /// How far the opened folder is on its way into the first row, or out of it, from 0 to 1; and how much is
  /// seen of all others.
  Q_PROPERTY(qreal move READ move WRITE setMove NOTIFY moveChanged)
  Q_PROPERTY(qreal strength READ strength WRITE setStrength NOTIFY moveChanged)
 public:
  explicit Icicle(QQuickItem* parent = nullptr);

  QVariantList blocks() const;
  /// The same as a click on the block.
  Q_INVOKABLE void press(int block);
  /// Says to screen readers that the keyboard is at the block of `item`, which itself never has the focus.
  Q_INVOKABLE static void announce(QObject* item);
  int rows() const;
  int current() const { return current_ < tiles().size() ? static_cast<int>(current_) : 0; }
  QRectF currentFrame() const { return frameOf(static_cast<std::size_t>(current())); }
  qreal move() const { return move_; }
  void setMove(qreal move);
  qreal strength() const { return strength_; }
  void setStrength(qreal strength);

 Q_SIGNALS:
  void currentChanged();
  void moveChanged();
  /// The row of the folder's item at this index should become the current one.
  void childWanted(int index);

 protected:
  std::vector<Tile> layOut() const override;
  std::vector<TileText> textsOf(const Tile& tile) const override;
  void paintStep(QPainter& painter, std::size_t index) const override;
  bool showsFound() const override { return false; }
  /// The person cannot choose the colours here, so it is plain where there is nothing to compare with.
  bool showsAge() const override { return explorer()->canCompare() && PictureItem::showsAge(); }
  void choose(std::size_t tile) override;
  void openTile(std::size_t tile) override { choose(tile); }
  void keyPressEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  void moveTo(std::size_t tile);
  std::size_t besides(int step) const;
  std::size_t below() const;

  std::size_t current_ = 0;
  qreal move_ = 1;
  qreal strength_ = 1;
};

}  // namespace spacemint
