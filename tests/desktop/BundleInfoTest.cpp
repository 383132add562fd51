#include "Spacemint/desktop/BundleInfo.h"

#include "Spacemint/desktop/linux/InstalledFiles.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace spacemint {
namespace {

using support::TemporaryFolder;

TEST(BundleInfo, takesTextsAndNothingElse) {
  const BundleInfo info = BundleInfo::parse(
      "<plist version='1.0'><dict><key>CFBundleIdentifier</key><string>app.example</string>"
      "<key>CFBundleShortVersionString</key><integer>1</integer></dict></plist>");
  EXPECT_EQ(info, (BundleInfo{.identifier = "app.example"}));
  EXPECT_EQ(BundleInfo::parse("no list"), BundleInfo{});
}

TEST(BundleInfo, ofTheBuildIsThatOfTheProduct) {
  const BundleInfo info = BundleInfo::load(InstalledFiles::information());
  EXPECT_EQ(info.identifier, "app.spacemint.Spacemint");
  EXPECT_EQ(info.displayName, "Spacemint");
  EXPECT_EQ(info.shortVersion, SPACEMINT_VERSION);
  EXPECT_TRUE(std::filesystem::exists(InstalledFiles::permissionsHelp()));
}

TEST(BundleInfo, canComeFromAnotherFile) {
  const TemporaryFolder folder;
  setenv("SPACEMINT_INFO", (folder / "none").c_str(), 1);
  EXPECT_EQ(BundleInfo::load(InstalledFiles::information()), BundleInfo{});
  unsetenv("SPACEMINT_INFO");
}

}  // namespace
}  // namespace spacemint
