#include "ui_kit/SymbolProvider.h"

#include "ui_kit/Symbols.h"

#include <QColor>
#include <QFile>
#include <QPainter>
#include <QSvgRenderer>

#include <algorithm>
#include <string>

namespace spacemint {

namespace {

/// The SVG drawing of a symbol; empty if the name is unknown.
QByteArray drawingOf(const QString& symbol) {
  const std::string name = symbol.toStdString();
  const auto found = std::find_if(symbolDrawings.begin(), symbolDrawings.end(),
                                  [&](const SymbolDrawing& drawing) { return drawing.name == name; });
  if (found == symbolDrawings.end()) return {};
  QFile file(QStringLiteral(":/qt/qml/Spacemint/UiKit/icons/%1.svg")
                 .arg(QLatin1StringView(found->file.data(), qsizetype(found->file.size()))));
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

}  // namespace

SymbolProvider::SymbolProvider() : QQuickImageProvider(Pixmap) {}

QPixmap SymbolProvider::requestPixmap(const QString& id, QSize* size, const QSize& requestedSize) {
  const qsizetype slash = id.indexOf(u'/');
  const QSize wanted = requestedSize.isEmpty() ? QSize(24, 24) : requestedSize;
  const QImage image = draw(id.left(slash), QColor(u'#' + id.mid(slash + 1)), wanted);
  *size = image.size();
  return QPixmap::fromImage(image);
}

QImage SymbolProvider::draw(const QString& name, const QColor& colour, const QSize& size) {
  QByteArray drawing = drawingOf(name);
  if (drawing.isEmpty()) return {};
  QSvgRenderer renderer(drawing.replace("currentColor", colour.name().toLatin1()));
  QImage image(size, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setOpacity(colour.alphaF());
  renderer.render(&painter);
  return image;
}

}  // namespace spacemint
