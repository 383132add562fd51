// What the shell decides and draws without a window.

#include "Spacemint/shell/Commands.h"
#include "Spacemint/shell/ItemLook.h"
#include "Spacemint/shell/Placement.h"
#include "Spacemint/shell/WindowMemory.h"
#include "support/TemporaryFolder.h"

#include <QKeyEvent>
#include <QPainter>
#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <functional>

namespace spacemint {
namespace {

TEST(StatusText, sayTheFreeSpaceWhereItIsWantedOrLow) {
  const VolumeStatus volume{"Disk", 500'000'000'000, 17'300'000'000};
  struct Case {
    SpaceLevel level;
    std::optional<VolumeStatus> volume;
    bool isWanted;
    const char* title;
    const char* toolTip;
    std::optional<Bytes> badge;
  };
  const std::array cases{
      Case{SpaceLevel::ok, volume, false, "", "17.3 GB free of 500 GB", {}},
      Case{SpaceLevel::ok, volume, true, " 17.3 GB", "17.3 GB free of 500 GB", {}},
      Case{SpaceLevel::low, volume, false, " 17.3 GB", "17.3 GB free of 500 GB", volume.free},
      Case{SpaceLevel::critical, volume, false, " 17.3 GB", "17.3 GB free of 500 GB", volume.free},
      Case{SpaceLevel::ok, std::nullopt, true, "", "", {}},
      Case{SpaceLevel::low, std::nullopt, true, "", "", {}},
  };
  for (const auto& c : cases) {
    const StatusFacts facts{c.level, c.volume, c.isWanted, "en_US"};
    EXPECT_EQ(statusText(facts), (StatusText{c.title, c.toolTip}));
    EXPECT_EQ(badgeOf(facts), c.badge);
  }
}

TEST(StatusText, saysThatFilesRunLow) {
  const Supply files{.resource = Resource::files, .name = "Home", .free = 9, .limits = fileLimits(1'000)};
  const StatusFacts facts{.volume = VolumeStatus{"Disk", 500'000'000'000, 17'300'000'000}, .lowFiles = files};
  EXPECT_EQ(statusText(facts).title, "");
  EXPECT_EQ(statusText(facts).toolTip, "17.3 GB free of 500 GB\nAlmost no room for more files on Home");
  EXPECT_EQ(facts.worstLevel(), SpaceLevel::critical);
}

TEST(PanelPlacement, isBesideTheItemAndInsideTheUsableArea) {
  const QRect whole{0, 0, 1280, 800};
  const PanelScreen top{whole, {0, 30, 1280, 770}};
  const PanelScreen bottom{whole, {0, 0, 1280, 770}};
  const PanelScreen second{{1280, 0, 1920, 1080}, {1280, 0, 1920, 1050}};
  const PanelScreen small{{0, 0, 400, 600}, {0, 24, 400, 576}};
  struct Case {
    std::optional<QPoint> item;
    PanelScreen screen;
    QRect place;
  };
  const std::array cases{
      Case{QPoint{600, 15}, top, {370, 36, 460, 700}},
      Case{QPoint{1270, 15}, top, {812, 36, 460, 700}},  // pushed left at the edge
      Case{QPoint{3, 15}, top, {8, 36, 460, 700}},
      Case{QPoint{600, 790}, bottom, {370, 64, 460, 700}},
      Case{QPoint{3190, 1070}, second, {2732, 344, 460, 700}},
      Case{std::nullopt, top, {812, 36, 460, 700}},
      Case{std::nullopt, bottom, {812, 64, 460, 700}},
      Case{QPoint{390, 10}, small, {8, 30, 384, 564}},  // as much of it as there is room for
  };
  for (const auto& c : cases) EXPECT_EQ(panelPlacement(c.item, c.screen), c.place);
}

// Two screens, also as small as they are at scale 1.25 and 1.5, with the desktop's panel at each edge.
TEST(PanelPlacement, touchesThePanelOfTheItemAtEveryEdge) {
  constexpr int thickness = 40;
  for (const QRect& whole : {QRect{0, 0, 1536, 864}, QRect{1536, 0, 1280, 720}}) {
    for (const QMargins& taken : {QMargins{0, thickness, 0, 0}, QMargins{0, 0, 0, thickness},
                                  QMargins{thickness, 0, 0, 0}, QMargins{0, 0, thickness, 0}}) {
      const QRect usable = whole.marginsRemoved(taken);
      for (int x = whole.left(); x <= whole.right(); x += 16) {
        for (int y = whole.top(); y <= whole.bottom(); y += 16) {
          if (usable.contains(x, y)) continue;
          const QRect place = panelPlacement(QPoint{x, y}, {whole, usable});
          ASSERT_TRUE(usable.contains(place)) << x << ' ' << y;
          // The item is at most as far away as the thickness, the margin and the half of an item.
          const QRect reach = place.marginsAdded(QMargins{1, 1, 1, 1} * (thickness + 8));
          ASSERT_TRUE(reach.contains(x, y)) << x << ' ' << y;
          const LayerPlacement layer = layerPlacement(QPoint{x, y}, whole);
          ASSERT_EQ(layer.edges.testFlag(Qt::TopEdge) && layer.edges.testFlag(Qt::BottomEdge),
                    whole.height() < 800);
          ASSERT_TRUE(whole.contains(QRect{whole.topLeft() + QPoint{layer.margins.left(), 0}, layer.size}));
        }
      }
    }
  }
}

TEST(WindowPlace, isTakenBackWhereItWouldBeSeen) {
  const std::array<QRect, 2> screens{QRect{0, 30, 1280, 770}, QRect{1280, 0, 1920, 1050}};
  const QSize size{460, 722};
  struct Case {
    std::string text;
    std::optional<WindowPlace> place;
  };
  const std::array cases{
      Case{"100 50", WindowPlace{{{100, 50}, size}, screens[0]}},
      Case{textOf({1500, 10, 800, 600}), WindowPlace{{1500, 10, 800, 600}, screens[1]}},
      Case{"-200 50", WindowPlace{{{-200, 50}, size}, screens[0]}},
      Case{"-300 50 800 600", WindowPlace{{-300, 50, 800, 600}, screens[0]}},
      Case{"-300 50", std::nullopt},  // less than half of it
      Case{"100 10", std::nullopt},   // its title is under a panel
      Case{"100 790", std::nullopt},
      Case{"9000 50", std::nullopt},  // of a screen that is gone
      Case{"", std::nullopt},
      Case{"100", std::nullopt},
      Case{"100 50 400", std::nullopt},
      Case{"100 50 -400 -600", std::nullopt},
      Case{"100 5x", std::nullopt},
      Case{"99999999999 5", std::nullopt},
      Case{"2147483647 5 2147483647 600", std::nullopt},
  };
  for (const auto& c : cases) EXPECT_EQ(windowPlace(c.text, size, screens), c.place) << c.text;
}

TEST(WindowMemory, damagedOnesAreNone) {
  const support::TemporaryFolder folder;
  DefaultsStore defaults{folder / "settings.json"};
  const std::string key = "SpacemintMainWindowContent";
  EXPECT_EQ(storedMemory(defaults), std::nullopt);
  const WindowMemory memory{.tab = Tab::developer, .folder = "/a b", .listWidth = 264};
  keepMemory(memory, defaults);
  EXPECT_EQ(storedMemory(defaults), memory);
  const std::string ok = "files";
  const std::string colours = "age";
  const std::int64_t width = 3;
  for (const DefaultsValue& value :
       {DefaultsValue{DefaultsArray{}}, DefaultsValue{DefaultsArray{ok, ok, colours}},
        DefaultsValue{DefaultsArray{colours, ok, colours, width}},
        DefaultsValue{DefaultsArray{ok, ok, ok, width}}, DefaultsValue{DefaultsArray{ok, ok, colours, ok}},
        DefaultsValue{DefaultsArray{true, ok, colours, width}}, DefaultsValue{ok}}) {
    ASSERT_TRUE(defaults.set(key, value));
    EXPECT_EQ(storedMemory(defaults), std::nullopt);
  }
  ASSERT_TRUE(defaults.set(key, DefaultsArray{ok, std::string{}, colours, std::int64_t{-9}}));
  EXPECT_EQ(storedMemory(defaults),
            (WindowMemory{.tab = Tab::files, .colouring = Explorer::Colouring::Age, .listWidth = 0}));
}

// The largest value of a measure of the pixels in a part of a picture.
int most(const QImage& image, const QRect& part, const std::function<int(QRgb)>& measure) {
  int largest = 0;
  for (int y = part.top(); y <= part.bottom(); ++y) {
    for (int x = part.left(); x <= part.right(); ++x) largest = std::max(largest, measure(image.pixel(x, y)));
  }
  return largest;
}

bool hasInk(const QImage& image, const QRect& area, const QColor& colour) {
  return most(image, area, [&](QRgb pixel) { return pixel == colour.rgb() ? 1 : 0; }) > 0;
}

TEST(StatusIcon, isTheLogoOrTheFigureInEverySize) {
  const QColor colour{0xE8, 0x64, 0x1C};
  const auto logo = StatusIcon::logo(colour);
  const auto figure = StatusIcon::figure(QStringLiteral(" 17.3 GB"), colour);
  ASSERT_EQ(logo.size(), figure.size());
  for (qsizetype i = 0; i < logo.size(); ++i) {
    const int size = logo[i].width();
    const QRect all{0, 0, size, size};
    // Nothing is between the ceiling of the logo and the bars at the left.
    EXPECT_EQ(logo[i].pixelColor(size / 5, size * 3 / 8).alpha(), 0) << size;
    if (size < 22) continue;  // too small for lines with a pixel of full colour
    EXPECT_TRUE(hasInk(logo[i], {0, 0, size, size / 4}, colour)) << size;
    EXPECT_TRUE(hasInk(figure[i], {0, 0, size, size / 2}, colour)) << size;
    EXPECT_TRUE(hasInk(figure[i], {0, size * 5 / 8, size, size * 3 / 8}, colour)) << size;
  }
}

// How far the lightest and the darkest pixel of a half of the picture are from the ground, the larger of
// both.
int contrast(const QImage& icon, const QRect& part, const QColor& ground) {
  QImage picture{icon.size(), QImage::Format_RGB32};
  picture.fill(ground);
  QPainter{&picture}.drawImage(0, 0, icon);
  return most(picture, part, [&](QRgb pixel) { return std::abs(qGray(pixel) - qGray(ground.rgb())); });
}

// The colour of the status area is only a guess.
TEST(StatusIcon, canBeReadOnAnyGround) {
  for (const QColor& colour : {QColor{0x1B1A19}, QColor{0xF3F1EC}, QColor{0xE8641C}, QColor{0xF07070}}) {
    for (const QColor& ground : {QColor{Qt::black}, QColor{Qt::white}}) {
      for (const auto& icon :
           StatusIcon::logo(colour) + StatusIcon::figure(QStringLiteral(" 17.3 GB"), colour)) {
        const int size = icon.width();
        for (const QRect& half : {QRect{0, 0, size, size / 2}, QRect{0, size / 2, size, size / 2}}) {
          EXPECT_GT(contrast(icon, half, ground), 60)
              << colour.name().toStdString() << " on " << ground.name().toStdString() << ", " << size;
        }
      }
    }
  }
}

TEST(Commands, areRunByTheirKeysAndGroupedInAMenu) {
  std::string ran;
  const auto command = [&ran](std::string title, std::optional<QKeyCombination> key) {
    return Command{.title = title,
                   .key = key,
                   .run = [&ran, title] { ran += title + ";"; },
                   .isInMenu = title != "Close"};
  };
  const Commands commands{{command("Open", {})},
                          {},
                          {command("Settings…", Qt::CTRL | Qt::Key_Comma)},
                          {command("Close", Qt::CTRL | Qt::Key_W)}};
  std::vector<std::string> titles;
  for (const auto& entry : menuOf(commands)) titles.push_back(entry.title);
  EXPECT_THAT(titles, testing::ElementsAre("Open", "", "Settings…"));
  const auto press = [&](int key, Qt::KeyboardModifiers modifiers, bool isHeld = false) {
    return runKey(commands, QKeyEvent{QEvent::KeyPress, key, modifiers, QString{}, isHeld});
  };
  EXPECT_TRUE(press(Qt::Key_Comma, Qt::ControlModifier));
  EXPECT_FALSE(press(Qt::Key_Comma, Qt::NoModifier));
  EXPECT_FALSE(press(Qt::Key_Comma, Qt::ControlModifier, true));
  EXPECT_EQ(ran, "Settings…;");
}

}  // namespace
}  // namespace spacemint
