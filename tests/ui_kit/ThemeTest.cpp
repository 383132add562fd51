#include "ui_kit/Theme.h"

#include "ui_kit/LogoGeometry.h"
#include "ui_kit/UiKit.h"

#include <QFontDatabase>
#include <QMetaProperty>
#include <QQmlComponent>
#include <QQmlEngine>
#include <gtest/gtest.h>

#include <memory>
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

TEST(Theme, NamesNoColourThatTheTableHasNot) {
  const QMetaObject& meta = Theme::staticMetaObject;
  std::size_t count = 0;
  for (int i = 0; i < meta.propertyCount(); ++i)
    count += meta.property(i).metaType() == QMetaType::fromType<QColor>();
  EXPECT_EQ(count, colours.size());
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
  EXPECT_EQ(UiKit::theme(engine).serifFamily(), serif);
}

}  // namespace

}  // namespace spacemint
