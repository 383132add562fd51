#include "Spacemint/command/ProgramPath.h"

#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <fstream>

namespace spacemint {
namespace {

namespace fs = std::filesystem;
using support::TemporaryFolder;

TEST(ProgramPath, isTheToolFoldersThenNodeThenTheSystem) {
  const TemporaryFolder root;
  const TemporaryFolder home;
  for (const char* version : {"v9.0.0", "v18.19.0", "v20.11.1", "v20.2.1", "v20.2.01a", "system"}) {
    fs::create_directories((home / ".nvm/versions/node/") + version);
  }
  fs::create_directories(root / "etc/paths.d");
  std::ofstream(root / "etc/paths") << "/usr/bin\n\n  /opt/homebrew/bin\t\r\n/opt/extra/bin\n/opt/extra/bin";
  std::ofstream(root / "etc/paths.d/2") << "/second/bin\n";
  std::ofstream(root / "etc/paths.d/1") << "/first/bin\n/second/bin\n";
  const std::string nodes = home / ".nvm/versions/node/";
  EXPECT_THAT(
      programPath({home.path(), root.path()}),
      testing::ElementsAre(
          "/opt/homebrew/bin", "/opt/homebrew/sbin", "/usr/local/bin", home / ".orbstack/bin",
          "/Applications/Docker.app/Contents/Resources/bin", home / ".docker/bin", home / ".local/bin",
          home / ".cargo/bin", home / ".bun/bin", home / ".volta/bin", home / "Library/pnpm", home / "go/bin",
          "/usr/local/go/bin", home / ".asdf/shims", home / ".local/share/mise/shims", nodes + "v20.11.1/bin",
          nodes + "v20.2.01a/bin", nodes + "v20.2.1/bin", nodes + "v18.19.0/bin", nodes + "v9.0.0/bin",
          nodes + "system/bin", "/home/linuxbrew/.linuxbrew/bin", "/snap/bin", "/var/lib/flatpak/exports/bin",
          home / ".deno/bin", home / ".pyenv/shims", "/usr/bin", "/bin", "/usr/sbin", "/sbin",
          "/opt/extra/bin", "/first/bin", "/second/bin"));
}

}  // namespace
}  // namespace spacemint
