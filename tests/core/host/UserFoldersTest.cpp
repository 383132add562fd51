#include "core/host/UserFolders.h"

#include "support/Files.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <cstdlib>

namespace spacemint {
namespace {

TEST(UserFolders, areTakenFromTheEnvironmentThenFromTheDesktopsSettings) {
  const support::TemporaryFolder home;
  const std::string oldHome = std::getenv("HOME");
  setenv("HOME", home.path().c_str(), 1);
  unsetenv("XDG_CONFIG_HOME");
  EXPECT_THAT(UserFolders::personal(), testing::IsEmpty());
  support::writeText(
      home / ".config/user-dirs.dirs",
      "# a comment\nXDG_DESKTOP_DIR=\"$HOME/\"\nXDG_DOWNLOAD_DIR=\"$HOME/T\\\"l\\$charg\xc3\xa9\"\n"
      "XDG_DOCUMENTS_DIR=\"/data/Dokumente/\"\nXDG_MUSIC_DIR=relative\nXDG_PICTURES_DIR=\"no end");
  setenv("XDG_VIDEOS_DIR", "/data/Filme", 1);
  EXPECT_THAT(UserFolders::personal(),
              testing::ElementsAre("/data/Dokumente", home / "T\"l$charg\xc3\xa9", "/data/Filme"));
  EXPECT_EQ(UserFolders::environment("XDG_DOWNLOAD_DIR"), home / "T\"l$charg\xc3\xa9");
  unsetenv("XDG_VIDEOS_DIR");
  setenv("HOME", oldHome.c_str(), 1);
}

}  // namespace
}  // namespace spacemint
