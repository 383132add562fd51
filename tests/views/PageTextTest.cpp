#include "Spacemint/views/FolderText.h"
#include "Spacemint/views/Icons.h"
#include "Spacemint/views/ScanControl.h"
#include "Spacemint/views/SettingsForm.h"
#include "Spacemint/views/ShownText.h"
#include "Spacemint/views/Summary.h"

#include <gmock/gmock.h>

namespace spacemint {
namespace {

using namespace std::chrono_literals;

TEST(PageText, titleTellsTheFractionCutOff) {
  EXPECT_EQ(ScanText::detail(1, {}, "en_US"), "1 file");
  EXPECT_EQ(ScanText::title({}), "Scanning…");
  EXPECT_EQ(ScanText::title(0), "Scanning · 0%");
  EXPECT_EQ(ScanText::title(0.429), "Scanning · 42%");
}

TEST(PageText, detailTellsFilesAndWhatIsLeft) {
  const std::pair<std::optional<Seconds>, const char*> cases[]{{std::nullopt, "12,345 files"},
                                                               {59s, "12,345 files · under a minute left"},
                                                               {60s, "12,345 files · about 1 min left"},
                                                               {90s, "12,345 files · about 2 min left"},
                                                               {3'600s, "12,345 files · about 60 min left"}};
  for (const auto& [remaining, text] : cases) EXPECT_EQ(ScanText::detail(12'345, remaining, "en_US"), text);
}

TEST(PageText, scannedTellsWhenAndWhat) {
  const Date now = Date{} + std::chrono::hours{10'000};
  const auto scanned = [&](const char* root) {
    Snapshot snapshot{.date = now - 2h};
    snapshot.root = Node{.name = root, .isDirectory = true};
    return ScanText::scanned({.snapshot = snapshot, .now = now, .home = "/home/ann"});
  };
  EXPECT_EQ(scanned("/home/ann"), "Scanned 2 hours ago · home folder");
  EXPECT_EQ(scanned("/"), "Scanned 2 hours ago · entire disk");
  EXPECT_EQ(scanned("/home"), "Scanned 2 hours ago · entire disk");
  EXPECT_EQ(scanned("/System/Volumes/Data"), "Scanned 2 hours ago · entire disk");
  EXPECT_EQ(scanned("/home/ann/code"), "Scanned 2 hours ago · ~/code");
  const Snapshot updated{.root = {.name = "/"}};
  EXPECT_EQ(ScanText::scanned({.snapshot = updated, .now = now, .home = "/h", .updatedAt = now}),
            "Updated just now · entire disk");
  const Snapshot part{.root = {.name = "/"}, .measuredPart = 0.609};
  EXPECT_EQ(ScanText::scanned({.snapshot = part, .now = now, .home = "/h"}), "Stopped: 60 % measured");
  EXPECT_EQ(ScanText::scannedHelp({.duration = Seconds{1}, .fileCount = 1}, "en_US"),
            "1 file, scanned in 1s");
  EXPECT_EQ(ScanText::scannedHelp({.duration = Seconds{4.9}, .fileCount = 600'000}, "en_US"),
            "600,000 files, scanned in 4s");
}

TEST(PageText, whatIsFoundKeepsItsPlaces) {
  const auto names = [](const std::vector<std::string>& order) {
    std::string all;
    for (const auto& item : ScanText::inOrder({{"big", 3}, {"new", 2}, {"small", 1}}, order))
      all += item.name + " ";
    return all;
  };
  EXPECT_EQ(names({}), "big new small ");
  EXPECT_EQ(names({"gone", "small", "big"}), "small big new ");
}

TEST(PageText, tickStandsWhereTheWarningBegins) {
  EXPECT_DOUBLE_EQ(warningFraction({"", 100 * gigabyte, 0}, 20), 0.8);
  EXPECT_DOUBLE_EQ(warningFraction({"", 10 * gigabyte, 0}, 20), 0);
  EXPECT_DOUBLE_EQ(warningFraction({"", 0, 0}, 20), 0);
  EXPECT_DOUBLE_EQ(warningFraction({"", gigabyte, 0}, 9'223'372'036), 0);
}

TEST(PageText, volumesAreListedFromTheFullest) {
  const auto volume = [](const char* name, Bytes used, Bytes free) {
    return VolumeReading{{.name = name, .places = {{}}, .isWritable = true},
                         Space{.total = used + free, .used = used, .free = free}};
  };
  std::vector<VolumeReading> readings{volume("Home", 99, 1),
                                      volume("data", 50 * gigabyte, 50 * gigabyte),
                                      volume("backup", 106 * gigabyte, 6 * gigabyte),
                                      volume("stick", 9, 1),
                                      volume("boot", 90, 1),
                                      volume("windows", 1, 1)};
  readings[0].volume.holdsHome = true;
  readings[1].space->files = {.total = 1'000, .free = 49};
  readings[3].volume.isRemovable = true;
  readings[5].space.reset();
  std::string spoken;
  for (const VolumeLine& line : volumeLines(readings, 20, "en_US"))
    spoken += line.spoken.toStdString() + "\n";
  EXPECT_EQ(
      spoken,
      "boot, 1 bytes free of 91 bytes\nbackup, 6 GB free of 112 GB, low\ndata, 50 GB free of 100 GB, Room "
      "for files is running low on data\n"
      "windows, no answer\n");
}

TEST(PageText, namesTheRootByWhatWasScanned) {
  const struct {
    const char* path;
    const char* root;
    const char* title;
  } cases[]{{"/", "/", "Entire disk"},
            {"/System/Volumes/Data", "/System/Volumes/Data", "Entire disk"},
            {"/home", "/home", "Entire disk"},
            {"/home/ann", "/", "ann"},
            {"/home/ann/ bad \xFF", "/home/ann", " bad \xFF"}};
  for (const auto& [path, root, title] : cases) EXPECT_EQ(FolderText::title(path, root, "/home/ann"), title);
}

TEST(PageText, aLineNeverBreaksBetweenAFigureAndItsUnit) {
  const struct {
    const char* text;
    const char16_t* shown;
  } cases[]{{"free 140 MB.", u"free 140\u00A0MB."},
            {"from 1.5 GB to 0 bytes", u"from 1.5\u00A0GB to 0\u00A0bytes"},
            {"\u0663 KB", u"\u0663\u00A0KB"},
            {"5 files, 3 MBs, a GB, GB 7", u"5 files, 3 MBs, a GB, GB 7"}};
  for (const auto& [text, shown] : cases) {
    EXPECT_EQ(ShownText::sentence(text), QString::fromUtf16(shown)) << text;
  }
}

TEST(PageText, aLineKeepsTheIsolatesOfItsNamesAndNoOthers) {
  const std::pair<const char16_t*, const char16_t*> cases[]{
      {u"\u2066~/\u2068\u05D0\u2069\u2069 grew", u"\u2066~/\u2068\u05D0\u2069\u2069 grew"},
      {u"\u2068a\u2069b\u2069 c", u"\u2068a\u2069b\uFFFD c"},
      {u"\u2067a \u2068b\u2069", u"\uFFFDa \u2068b\u2069"},
      {u"a\u202Eb\nc\u2028d", u"a\uFFFDb\uFFFDc\uFFFDd"}};
  for (const auto& [text, shown] : cases)
    EXPECT_EQ(ShownText::onOneLine(QString::fromUtf16(text)), QString::fromUtf16(shown));
}

TEST(PageText, quotesCommandsButNothingInNames) {
  const QString text = QString::fromUtf16(u"`a \u2068b\u2069` \u2068c`d\u2069 `e` \u2068f`\u2069");
  EXPECT_EQ(ShownText::withQuotes(text),
            QString::fromUtf16(u"“a \u2068b\u2069” \u2068c`d\u2069 “e” \u2068f`\u2069"));
}

std::vector<std::string> labels(const std::vector<SettingsText::Choice>& choices) {
  std::vector<std::string> result;
  for (const auto& choice : choices) result.push_back(choice.label);
  return result;
}

TEST(PageText, whatIsStoredIsOfferedInItsPlace) {
  EXPECT_EQ(SettingsText::thresholds(20).size(), 10U);
  EXPECT_THAT(labels(SettingsText::intervals(6)),
              testing::ElementsAre("Every 3 hours", "Every 6 hours", "Every 12 hours", "Once a day"));
  EXPECT_EQ(SettingsText::thresholds(25).at(4), (SettingsText::Choice{25, "25 GB free"}));
  EXPECT_EQ(SettingsText::thresholds(999).back().value, 999);
  EXPECT_EQ(SettingsText::thresholds(-1).front().value, -1);
  EXPECT_EQ(SettingsText::intervals(1).front().label, "Every hour");
  EXPECT_EQ(SettingsText::intervals(0).front().label, "Never");
  EXPECT_EQ(SettingsText::intervals(48).back().label, "Every 48 hours");
}

using SymbolOfName = std::pair<const char*, const char*>;

TEST(Icons, folderIsKnownByItsExtension) {
  const SymbolOfName cases[]{
      {"Editor.app", "app.dashed"}, {"Editor.APP", "app.dashed"}, {".Trash", "trash"}, {".trash", "folder"},
      {".app", "folder"},           {"movie.mp4", "folder"},      {"", "folder"}};
  for (const auto& [name, symbol] : cases) EXPECT_EQ(Icons::symbol(name, true), symbol) << name;
}

TEST(Icons, fileIsKnownByItsTypeInTheOrderOfTheTable) {
  const SymbolOfName cases[]{{"System.IMG.gz", "externaldrive"},
                             {"docker.raw", "externaldrive"},
                             {"photo.raw", "photo"},
                             {".mp4", "doc"},
                             {"data.nosuchtype", "doc"},
                             {"holiday.MOV", "film"},
                             {"song.mp3", "waveform"},
                             {"debian.iso", "externaldrive"},
                             {"machine.qcow2", "externaldrive"},
                             {"old.tar.gz", "doc.zipper"},
                             {"Editor.AppImage", "app.dashed"},
                             {"Editor.app", "doc"},
                             {"bad \xFF name.mp4", "film"},
                             {"", "doc"}};
  for (const auto& [name, symbol] : cases) EXPECT_EQ(Icons::symbol(name, false), symbol) << name;
}

}  // namespace
}  // namespace spacemint
