#pragma once

#include <QColor>
#include <QQuickPaintedItem>

namespace spacemint {

/// The logo in two colours, filling its bounds.
class LogoMark : public QQuickPaintedItem {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(QColor ink MEMBER ink_ NOTIFY coloursChanged)
  Q_PROPERTY(QColor ceiling MEMBER ceiling_ NOTIFY coloursChanged)
 public:
  explicit LogoMark(QQuickItem* parent = nullptr);

  void paint(QPainter* painter) override;

 Q_SIGNALS:
  void coloursChanged();

 private:
  QColor ink_ = Qt::black;
  QColor ceiling_ = Qt::black;
};

}  // namespace spacemint
