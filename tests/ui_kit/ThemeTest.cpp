#include "ui_kit/Theme.h"

#include "ui_kit/LogoGeometry.h"
#include "ui_kit/SymbolProvider.h"
#include "ui_kit/Symbols.h"
#include "ui_kit/UiKit.h"

#include <QColor>
#include <QFontDatabase>
#include <QQmlComponent>
#include <QQmlEngine>
#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>

namespace spacemint {

namespace {

TEST(Theme, HasEachColourInBothAppearances) {
  Theme theme;
  for (const bool isDark : {false, true, false}) {
    theme.setDark(isDark);
    for (const Colour& colour : colours) {
      SCOPED_TRACE(colour.name);
      const QVariant value = theme.property(std::string(colour.name).c_str());
      ASSERT_TRUE(value.isValid());
      EXPECT_EQ(value.value<QColor>().rgba(), 0xFF000000 | (isDark ? colour.dark : colour.light));
    }
  }
}

TEST(Theme, KeepsTheTextReadable) {
  Theme theme;
  const struct {
    double asked;
    double expected;
  } cases[] = {{1.5, 1.5}, {0, 1}, {-3, 1}, {0.9, 1}, {2, 2}, {50, 2}};
  for (const auto& each : cases) {
    theme.setTextScale(each.asked);
    EXPECT_DOUBLE_EQ(theme.textScale(), each.expected) << each.asked;
  }
  QFont large;
  large.setPointSizeF(15);
  EXPECT_NEAR(Theme::textScaleOf(large), 1.5, 0.05);
}

TEST(UiKit, GivesTheThemeThatItsEngineSees) {
  QQmlEngine engine;
  UiKit::install(engine);
  Theme& theme = UiKit::theme(engine);
  EXPECT_EQ(&theme, &UiKit::theme(engine));

  QQmlComponent component(&engine);
  component.setData("import QtQuick; import Spacemint.UiKit; Label { text: \"x\" }", {});
  const std::unique_ptr<QObject> label(component.create());
  ASSERT_TRUE(label) << component.errorString().toStdString();
  const auto colour = [&] { return label->property("color").value<QColor>(); };
  EXPECT_EQ(colour(), QColor(0x1B, 0x1A, 0x19));
  theme.setDark(true);
  EXPECT_EQ(colour(), QColor(0xF3, 0xF1, 0xEC));
}

TEST(LogoGeometry, UpsideDownItsPartsAreMirroredInTheSameRectangle) {
  constexpr LogoGeometry::Rect in{10, 20, 200, 100};
  const auto upright = LogoGeometry::parts(in, false);
  const auto flipped = LogoGeometry::parts(in, true);
  for (std::size_t i = 0; i < upright.size(); ++i) {
    const LogoGeometry::Rect& rect = upright[i].rect;
    EXPECT_NEAR(flipped[i].rect.y, 2 * in.y + in.height - rect.y - rect.height, 1e-9);
    EXPECT_EQ(flipped[i].rect.x, rect.x);
    EXPECT_EQ(flipped[i].isCeiling, i == 0);
  }
}

TEST(UiKit, BringsItsSerif) {
  QQmlEngine engine;
  UiKit::install(engine);
  const QString serif = QStringLiteral("Source Serif 4");
  EXPECT_TRUE(QFontDatabase::hasFamily(serif));
  const Theme& theme = UiKit::theme(engine);
  EXPECT_EQ(theme.displayFamily(QStringLiteral("57.1 GB für Ærø")), serif);
  EXPECT_EQ(theme.displayFamily(QStringLiteral("Łódź")), theme.sansFamily());
}

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
