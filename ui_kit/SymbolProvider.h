#pragma once

#include <QQuickImageProvider>

namespace spacemint {

/// Draws the symbols for QML: `image://symbol/NAME/RRGGBB` at the asked size, in one colour. A name that is
/// not there gives an empty picture.
class SymbolProvider : public QQuickImageProvider {
 public:
  SymbolProvider();

  QPixmap requestPixmap(const QString& id, QSize* size, const QSize& requestedSize) override;

  /// The same for C++; null where there is no such symbol.
  static QImage draw(const QString& name, const QColor& colour, const QSize& size);
};

}  // namespace spacemint
