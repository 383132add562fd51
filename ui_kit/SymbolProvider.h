#pragma once

#include <QQuickImageProvider>

namespace spacemint {

/// Draws the symbols for QML: `image://symbol/NAME/RRGGBB` in the requested size and in one colour. An
/// unknown name gives an empty picture.
class SymbolProvider : public QQuickImageProvider {
 public:
  SymbolProvider();

  QPixmap requestPixmap(const QString& id, QSize* size, const QSize& requestedSize) override;

  /// The same for C++. The image is null if the name is unknown.
  static QImage draw(const QString& name, const QColor& colour, const QSize& size);
};

}  // namespace spacemint
