// Draws the application's icon from the logo's geometry table. Writes FOLDER/scalable/apps/NAME.svg,
// FOLDER/48x48/apps/NAME.png and so on.

#include "ui_kit/Colours.h"
#include "ui_kit/LogoGeometry.h"

#include <QColor>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QPainter>

#include <cstdio>

namespace {

using namespace spacemint;

constexpr std::array sizes{16, 22, 24, 32, 48, 64, 128, 256, 512};
// The margin around the tile, and the logo's distance from the tile's round corners.
constexpr double rim = 0.04;
constexpr double corner = 0.2;
constexpr double inset = 0.2;

struct Shape {
  LogoGeometry::Rect rect;
  double radius;
  std::uint32_t colour;
};

std::array<Shape, 5> shapes(double size) {
  const LogoGeometry::Rect tile{rim * size, rim * size, (1 - 2 * rim) * size, (1 - 2 * rim) * size};
  const LogoGeometry::Rect logo{inset * size, inset * size, (1 - 2 * inset) * size, (1 - 2 * inset) * size};
  std::array<Shape, 5> result{Shape{tile, corner * size, colourNamed("canvas").light}};
  std::size_t next = 1;
  for (const auto& part : LogoGeometry::parts(logo, false)) {
    result.at(next++) = {part.rect, LogoGeometry::cornerRadius(part.rect),
                         part.isCeiling ? colourNamed("lavenderInk").light : colourNamed("ink").light};
  }
  return result;
}

QByteArray svg() {
  QByteArray text = "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 128 128\">\n";
  for (const auto& [rect, radius, colour] : shapes(128)) {
    text += QStringLiteral("  <rect x=\"%1\" y=\"%2\" width=\"%3\" height=\"%4\" rx=\"%5\" fill=\"%6\"/>\n")
                .arg(rect.x)
                .arg(rect.y)
                .arg(rect.width)
                .arg(rect.height)
                .arg(radius)
                .arg(QColor::fromRgb(colour).name())
                .toUtf8();
  }
  return text + "</svg>\n";
}

QImage picture(int size) {
  QImage image{size, size, QImage::Format_ARGB32_Premultiplied};
  image.fill(Qt::transparent);
  QPainter painter{&image};
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  for (const auto& [rect, radius, colour] : shapes(size)) {
    painter.setBrush(QColor::fromRgb(colour));
    painter.drawRoundedRect(QRectF{rect.x, rect.y, rect.width, rect.height}, radius, radius);
  }
  return image;
}

bool write(const QString& path, const QByteArray& bytes) {
  QFile file{path};
  return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fputs("usage: spacemint_icons FOLDER NAME\n", stderr);
    return 2;
  }
  const QDir folder{QString::fromLocal8Bit(argv[1])};
  const QString name = QString::fromLocal8Bit(argv[2]);
  const auto place = [&](const QString& size, const QString& ending) {
    folder.mkpath(size + QStringLiteral("/apps"));
    return folder.filePath(size + QStringLiteral("/apps/") + name + ending);
  };
  bool allWritten = write(place(QStringLiteral("scalable"), QStringLiteral(".svg")), svg());
  for (const int size : sizes) {
    const QString path = place(QStringLiteral("%1x%1").arg(size), QStringLiteral(".png"));
    allWritten = picture(size).save(path) && allWritten;
  }
  return allWritten ? 0 : 1;
}
