#pragma once

#include "Spacemint/views/UiHost.h"
#include "core/picture/SpaceLine.h"

#include <QPointF>
#include <QQuickPaintedItem>
#include <QRectF>
#include <QSizeF>

#include <vector>

namespace spacemint {

class Theme;

/// The free space of the home folder's volume over time, and the stored scans on it, one of which is compared
/// with. Main thread only.
class SpaceHistory : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("a part of the interface's model")
  Q_PROPERTY(bool isKnown READ isKnown NOTIFY changed)
  /// In place of a line of a single point.
  Q_PROPERTY(QString text READ text NOTIFY changed)
  // The scans on the line, from the oldest to the newest that can be compared with; for a slider.
  Q_PROPERTY(int count READ count NOTIFY changed)
  Q_PROPERTY(int chosen READ chosen NOTIFY changed)
  Q_PROPERTY(QString chosenText READ chosenText NOTIFY changed)
 public:
  explicit SpaceHistory(const UiHost& host);

  bool isKnown() const { return !line_.points.empty(); }
  QString text() const;
  int count() const { return static_cast<int>(line_.scans.size()); }
  int chosen() const;
  QString chosenText() const;

  /// Compares with the scan at this place on the line.
  Q_INVOKABLE void choose(int place);
  /// "Thu 19 Nov, 8:10 AM · 58.4 GB free", and that a click compares with it.
  Q_INVOKABLE QString help(int place) const;

  // For the line.
  const SpaceLine& line() const { return line_; }
  int level() const { return static_cast<int>(host_.model.warnings().level()); }
  QString levelText() const;
  QString dateText(Date date) const;

 Q_SIGNALS:
  void changed();

 private:
  void update();
  void show(std::vector<FreeSpaceReading> readings);
  const SpaceLine::Scan& scanAt(int place) const {
    return line_.scans.at(line_.scans.size() - 1 - static_cast<std::size_t>(place));
  }
  bool isPlace(int place) const { return place >= 0 && place < count(); }

  const UiHost& host_;
  SpaceLine line_;
  /// The scans that the line was made with.
  std::vector<SnapshotStore::Entry> entries_;
};

/// Draws the line of a SpaceHistory. Main thread only.
class FreeLine : public QQuickPaintedItem {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(spacemint::SpaceHistory* history READ history WRITE setHistory NOTIFY historyChanged REQUIRED)
  /// Whether the time goes to the left, as the language does.
  Q_PROPERTY(bool mirrored MEMBER isMirrored_ WRITE setMirrored NOTIFY mirroredChanged)
  /// The height of the line without its dates.
  Q_PROPERTY(qreal lineHeight MEMBER lineHeight_ WRITE setLineHeight NOTIFY lineHeightChanged)
  /// The scan under the pointer, as a place on the line; -1 for none. And where it is.
  Q_PROPERTY(int pointed READ pointed NOTIFY pointedChanged)
  Q_PROPERTY(QPointF pointedAt READ pointedAt NOTIFY pointedChanged)
 public:
  explicit FreeLine(QQuickItem* parent = nullptr);

  SpaceHistory* history() const { return history_; }
  void setHistory(SpaceHistory* history);
  void setLineHeight(qreal height);
  int pointed() const { return pointed_; }
  QPointF pointedAt() const;
  void setMirrored(bool isMirrored);

  void paint(QPainter* painter) override;

 Q_SIGNALS:
  void historyChanged();
  void mirroredChanged();
  void lineHeightChanged();
  void pointedChanged();

 protected:
  void componentComplete() override;
  void hoverMoveEvent(QHoverEvent* event) override;
  void hoverLeaveEvent(QHoverEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;

 private:
  const Theme& theme() const;
  // All places are those of a line that goes to the right; `seen` turns one around.
  QPointF pointOf(const SpacePoint& point) const;
  qreal seen(qreal x) const { return isMirrored_ ? width() - x : x; }
  const SpacePoint& scanPoint(int place) const;
  int placeAt(qreal x) const;
  void setPointed(int place);
  bool isCrossed(const QRectF& box) const;
  QRectF levelBox(const QSizeF& size, qreal y) const;
  void write(QPainter& painter, const QRectF& box, Qt::Alignment alignment, const QString& text) const;
  void paintGround(QPainter& painter) const;
  void paintLine(QPainter& painter) const;
  void paintScans(QPainter& painter) const;
  void paintDates(QPainter& painter) const;

  SpaceHistory* history_ = nullptr;
  qreal lineHeight_ = 48;
  int pointed_ = -1;
  bool isMirrored_ = false;
};

}  // namespace spacemint
