#include "Spacemint/views/DeveloperText.h"
#include "Spacemint/views/FolderText.h"
#include "Spacemint/views/OverviewText.h"

#include <gtest/gtest.h>

namespace spacemint {
namespace {

constexpr Bytes GB = 1'000'000'000;
const std::string english = "en_US";

TEST(OverviewText, saysWhyThereIsNoListOfWhatGrew) {
  const std::vector<Growth> grown{{.path = "/home/ann/Movies", .delta = GB}};
  struct Case {
    Findings findings;
    std::string text;
    std::string freeChange;
  };
  const Case cases[]{
      {{}, "After the next scan, this shows where new space went.", ""},
      {{.baselineUnavailable = true}, "The earlier scan couldn't be read. Pick another one above.", ""},
      {{.baselineFree = 34 * GB},
       "Nothing grew by more than 100 MB.",
       "Free space dropped by 2 GB, from 34 GB to 32 GB"},
      {{.growth = grown, .baselineFree = 32 * GB}, "", "Free space grew by 0 bytes, from 32 GB to 32 GB"},
      {{.growth = grown, .baselineFree = 31 * GB}, "", "Free space grew by 1 GB, from 31 GB to 32 GB"}};
  for (const auto& [findings, text, freeChange] : cases) {
    EXPECT_EQ(OverviewText::growth(findings, english), text);
    EXPECT_EQ(OverviewText::freeChange(findings, 32 * GB, english), freeChange);
  }
}

TEST(OverviewText, fiveRowsOfGrowthNeedNoToggle) {
  EXPECT_EQ(OverviewText::growthToggle(0, false), "");
  EXPECT_EQ(OverviewText::growthToggle(5, false), "");
  EXPECT_EQ(OverviewText::growthToggle(5, true), "");
  EXPECT_EQ(OverviewText::growthToggle(6, false), "Show all 6");
  EXPECT_EQ(OverviewText::growthToggle(6, true), "Show less");
}

TEST(OverviewText, namesAnEarlierScanByItsAgeAndTime) {
  const Date scan = dateFromUnixSeconds(1'772'438'400);  // 2 March 2026, 08:00 in Greenwich
  const auto text = [&](std::chrono::hours age, const char* zone, const std::string& locale) {
    return OverviewText::baseline(scan, {.now = scan + age, .zone = QTimeZone{zone}, .locale = locale});
  };
  EXPECT_EQ(text(std::chrono::hours{25}, "UTC", "de_DE"), "1 day ago · 08:00");
  EXPECT_EQ(text(std::chrono::hours{3}, "Asia/Tokyo", "en_GB"), "3 hours ago · 17:00");
}

TEST(FolderText, namesTheRootByWhatWasScanned) {
  const struct {
    const char* path;
    const char* root;
    const char* title;
  } cases[]{{"/", "/", "Entire disk"},
            {"/System/Volumes/Data", "/System/Volumes/Data", "Entire disk"},
            {"/home", "/home", "Entire disk"},
            {"/home/ann", "/home/ann", "Home folder"},
            {"/home/ann", "/", "ann"},
            {"/home/ann/Downloads", "/home/ann", "Downloads"},
            {"/home/ann/ bad \xFF", "/home/ann", " bad \xFF"}};
  for (const auto& [path, root, title] : cases) EXPECT_EQ(FolderText::title(path, root, "/home/ann"), title);
}

TEST(FolderText, speaksOfWhatIsTooSmallToBeListed) {
  EXPECT_EQ(FolderText::smallItems(true, english), "Other small items");
  EXPECT_EQ(FolderText::smallItems(false, english), "Only small items, each under 20 MB");
  EXPECT_EQ(FolderText::noLargeFiles(english), "No files over 20 MB.");
}

TEST(DeveloperText, namesTheKindsOfDockersData) {
  const struct {
    const char* type;
    const char* title;
    const char* symbol;
  } cases[]{{"Images", "Unused images", "square.stack.3d.up"},
            {"Containers", "Stopped containers", "shippingbox"},
            {"Build Cache", "Unused build cache", "hammer"},
            {"Local Volumes", "Local Volumes", "cylinder"},
            {"Something new", "Something new", "cube"}};
  for (const auto& [type, title, symbol] : cases) {
    const auto kind = DeveloperText::dockerKind(type);
    EXPECT_EQ(kind.title, title);
    EXPECT_EQ(kind.symbol, symbol);
  }
}

TEST(DeveloperText, namesRepositoriesAndTheRestOfTheCache) {
  const auto text = [](const char* repo, const char* kind) {
    const auto item = DeveloperText::cacheItem({.repo = repo, .kind = kind, .path = "/p", .size = 1});
    return item.title + "|" + item.subtitle + "|" + std::string{item.symbol};
  };
  EXPECT_EQ(text("openai/whisper", "Model"), "whisper|Model · openai|brain");
  EXPECT_EQ(text("gpt2", "Model"), "gpt2|Model|brain");
  EXPECT_EQ(text("org/set", "Dataset"), "set|Dataset · org|square.stack.3d.up");
  EXPECT_EQ(text("org/demo", "Space"), "demo|Space · org|cube");
  EXPECT_EQ(text("xet", "Cache folder"), "Other cached files|Cache folder · xet|cube.transparent");
}

TEST(DeveloperText, countsActiveWorktrees) {
  EXPECT_EQ(DeveloperText::activeToggle(0, false), "");
  EXPECT_EQ(DeveloperText::activeToggle(1, false), "Show 1 active worktree");
  EXPECT_EQ(DeveloperText::activeToggle(2, false), "Show 2 active worktrees");
  EXPECT_EQ(DeveloperText::activeToggle(2, true), "Hide active worktrees");
}

}  // namespace
}  // namespace spacemint
