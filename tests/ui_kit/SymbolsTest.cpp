#include "ui_kit/Symbols.h"

#include "ui_kit/SymbolProvider.h"

#include <QColor>
#include <gtest/gtest.h>

#include <set>

namespace spacemint {

namespace {

QString qString(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// The number of pixels that are not fully transparent.
int covered(const QImage& image) {
  int count = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) count += image.pixelColor(x, y).alpha() > 0;
  }
  return count;
}

TEST(Symbols, EachDrawsSomethingOfItsOwn) {
  std::set<QByteArray> pictures;
  for (const SymbolDrawing& symbol : symbolDrawings) {
    SCOPED_TRACE(symbol.name);
    const QImage image = SymbolProvider::draw(qString(symbol.name), QColor(0, 0, 0), QSize(32, 32));
    ASSERT_EQ(image.size(), QSize(32, 32));
    EXPECT_GT(covered(image), 32);
    EXPECT_LT(covered(image), 32 * 32);
    pictures.insert(QByteArray(reinterpret_cast<const char*>(image.constBits()), image.sizeInBytes()));
  }
  EXPECT_EQ(pictures.size(), symbolDrawings.size());
}

TEST(Symbols, AreInTheColourThatWasAskedFor) {
  const QColor asked(0xE8, 0x64, 0x1C);
  for (const SymbolDrawing& symbol : symbolDrawings) {
    SCOPED_TRACE(symbol.name);
    const QImage image = SymbolProvider::draw(qString(symbol.name), asked, QSize(48, 48));
    for (int y = 0; y < image.height(); ++y) {
      for (int x = 0; x < image.width(); ++x) {
        const QColor pixel = image.pixelColor(x, y);
        if (pixel.alpha() < 255) continue;
        // Blending rounds where strokes overlap.
        ASSERT_NEAR(pixel.red(), asked.red(), 2) << x << ' ' << y;
        ASSERT_NEAR(pixel.green(), asked.green(), 2) << x << ' ' << y;
        ASSERT_NEAR(pixel.blue(), asked.blue(), 2) << x << ' ' << y;
      }
    }
  }
}

TEST(Symbols, OfNoSuchNameAreNoPicture) {
  SymbolProvider provider;
  QSize size;
  EXPECT_TRUE(SymbolProvider::draw(QStringLiteral("../fonts/x"), QColor(0, 0, 0), QSize(16, 16)).isNull());
  EXPECT_TRUE(provider.requestPixmap(QStringLiteral("nothing/000000"), &size, QSize(16, 16)).isNull());
  EXPECT_EQ(provider.requestPixmap(QStringLiteral("trash/000000"), &size, QSize(40, 40)).size(),
            QSize(40, 40));
  EXPECT_EQ(size, QSize(40, 40));
}

}  // namespace

}  // namespace spacemint
