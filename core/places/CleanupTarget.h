#pragma once

#include "core/base/Translation.h"
#include "core/places/Place.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace spacemint {

/// A cache that its tool fills again when needed, and the way to clean the cache.
struct CleanupTarget {
  /// Run the tool's own clean-up command, which removes only what the tool can do without.
  struct Command {
    /// The program and its arguments, separated by single spaces. The program is looked up on the search
    /// path.
    std::string_view line;
    /// The environment variable that makes the tool clean exactly the shown folder, whatever the tool's
    /// settings say; in the notation of `Place::movedBy`. Empty if the tool has no such variable.
    std::string_view pin = {};

    std::string program() const;
    std::vector<std::string> arguments() const;
    /// The environment variable of `pin` and its value for the folder `path`; absent if there is no variable
    /// or the path does not end as `pin` requires.
    std::optional<std::pair<std::string, std::string>> pinned(std::string_view path) const;
    bool operator==(const Command&) const = default;
  };
  /// Delete the folder's contents and keep the folder.
  struct DeleteContents {
    bool operator==(const DeleteContents&) const = default;
  };
  using Action = std::variant<Command, DeleteContents>;

  /// A key that never changes.
  std::string_view id;
  const char* title;
  const char* advice;
  std::string_view symbol;
  Place place;
  Action action;

  /// The command as a user would type it; absent for `DeleteContents`.
  std::optional<std::string> commandLine() const;

  bool operator==(const CleanupTarget&) const = default;
};

// clang-format off
inline constexpr auto cleanupTargets = std::to_array<CleanupTarget>({
    {"deriveddata", i18nMark("Xcode build data"), i18nMark("Xcode rebuilds it"), "hammer", {"Library/Developer/Xcode/DerivedData"}, CleanupTarget::DeleteContents{}},
    {"simulators", i18nMark("Unavailable simulators"), i18nMark("For runtimes you no longer have"), "ipad.and.iphone", {"Library/Developer/CoreSimulator/Devices"}, CleanupTarget::Command{"xcrun simctl delete unavailable"}},
    {"devicesupport", i18nMark("iOS device support"), i18nMark("Comes back when you connect a device"), "iphone", {"Library/Developer/Xcode/iOS DeviceSupport"}, CleanupTarget::DeleteContents{}},
    {"npm", i18nMark("npm cache"), i18nMark("Downloaded again on demand"), "shippingbox", {".npm/_cacache", "npm_config_cache/_cacache|NPM_CONFIG_CACHE/_cacache"}, CleanupTarget::Command{"npm cache clean --force", "npm_config_cache/_cacache"}},
    {"pnpm", i18nMark("pnpm store"), i18nMark("Removes packages no project uses"), "shippingbox", {"Library/pnpm/store"}, CleanupTarget::Command{"pnpm store prune", "npm_config_store_dir"}},
    {"yarn", i18nMark("Yarn cache"), i18nMark("Downloaded again on demand"), "shippingbox", {"Library/Caches/Yarn"}, CleanupTarget::Command{"yarn cache clean", "YARN_CACHE_FOLDER"}},
    {"bun", i18nMark("Bun cache"), i18nMark("Downloaded again on demand"), "shippingbox", {".bun/install/cache", "BUN_INSTALL_CACHE_DIR|BUN_INSTALL/install/cache|XDG_CACHE_HOME/.bun/install/cache"}, CleanupTarget::Command{"bun pm cache rm", "BUN_INSTALL_CACHE_DIR"}},
    {"uv", i18nMark("uv cache"), i18nMark("Downloaded again on demand"), "shippingbox", {"$cache/uv", "UV_CACHE_DIR"}, CleanupTarget::Command{"uv cache clean", "UV_CACHE_DIR"}},
    {"pip", i18nMark("pip cache"), i18nMark("Downloaded again on demand"), "shippingbox", {"Library/Caches/pip"}, CleanupTarget::Command{"pip3 cache purge", "PIP_CACHE_DIR"}},
    {"homebrew", i18nMark("Homebrew downloads"), i18nMark("Old versions and downloads"), "mug", {"Library/Caches/Homebrew"}, CleanupTarget::Command{"brew cleanup --prune=all", "HOMEBREW_CACHE"}},
    {"go", i18nMark("Go build cache"), i18nMark("Rebuilt on the next build"), "shippingbox", {"Library/Caches/go-build"}, CleanupTarget::Command{"go clean -cache", "GOCACHE"}},
    {"gradle", i18nMark("Gradle caches"), i18nMark("Downloaded again on the next build"), "shippingbox", {".gradle/caches", "GRADLE_USER_HOME/caches"}, CleanupTarget::DeleteContents{}},
    {"cargo", i18nMark("Cargo download cache"), i18nMark("Downloaded again on demand"), "shippingbox", {".cargo/registry/cache", "CARGO_HOME/registry/cache"}, CleanupTarget::DeleteContents{}},
    {"playwright", i18nMark("Playwright browsers"), i18nMark("Reinstall with npx playwright install"), "safari", {"Library/Caches/ms-playwright"}, CleanupTarget::DeleteContents{}},

    {"pnpm-xdg", i18nMark("pnpm store"), i18nMark("Removes packages no project uses"), "shippingbox", {"$data/pnpm/store", "PNPM_HOME/store"}, CleanupTarget::Command{"pnpm store prune", "npm_config_store_dir"}},
    {"yarn-xdg", i18nMark("Yarn cache"), i18nMark("Downloaded again on demand"), "shippingbox", {"$cache/yarn", "YARN_CACHE_FOLDER"}, CleanupTarget::Command{"yarn cache clean", "YARN_CACHE_FOLDER"}},
    {"pip-xdg", i18nMark("pip cache"), i18nMark("Downloaded again on demand"), "shippingbox", {"$cache/pip", "PIP_CACHE_DIR"}, CleanupTarget::Command{"pip3 cache purge", "PIP_CACHE_DIR"}},
    {"homebrew-xdg", i18nMark("Homebrew downloads"), i18nMark("Old versions and downloads"), "mug", {"$cache/Homebrew", "HOMEBREW_CACHE"}, CleanupTarget::Command{"brew cleanup --prune=all", "HOMEBREW_CACHE"}},
    {"go-xdg", i18nMark("Go build cache"), i18nMark("Rebuilt on the next build"), "shippingbox", {"$cache/go-build", "GOCACHE"}, CleanupTarget::Command{"go clean -cache", "GOCACHE"}},
    {"gomod", i18nMark("Go module cache"), i18nMark("Downloaded again on demand"), "shippingbox", {"go/pkg/mod", "GOMODCACHE|GOPATH/pkg/mod"}, CleanupTarget::Command{"go clean -modcache", "GOMODCACHE"}},
    {"gradle-dists", i18nMark("Gradle distributions"), i18nMark("Downloaded again on the next build"), "shippingbox", {".gradle/wrapper/dists", "GRADLE_USER_HOME/wrapper/dists"}, CleanupTarget::DeleteContents{}},
    {"cargo-src", i18nMark("Cargo sources"), i18nMark("Unpacked again on demand"), "shippingbox", {".cargo/registry/src", "CARGO_HOME/registry/src"}, CleanupTarget::DeleteContents{}},
    {"cargo-git", i18nMark("Cargo git checkouts"), i18nMark("Checked out again on demand"), "shippingbox", {".cargo/git/checkouts", "CARGO_HOME/git/checkouts"}, CleanupTarget::DeleteContents{}},
    {"ccache", i18nMark("Compiler cache"), i18nMark("Rebuilt on the next build"), "hammer", {".ccache|$cache/ccache", "CCACHE_DIR"}, CleanupTarget::Command{"ccache -C", "CCACHE_DIR"}},
    {"sccache", i18nMark("Shared compiler cache"), i18nMark("Rebuilt on the next build"), "hammer", {"$cache/sccache", "SCCACHE_DIR"}, CleanupTarget::DeleteContents{}},
    {"conda", i18nMark("Conda package cache"), i18nMark("Downloaded again on demand"), "shippingbox", {condaPackages, "CONDA_PKGS_DIRS"}, CleanupTarget::Command{"conda clean --all --yes", "CONDA_PKGS_DIRS"}},
    {"playwright-xdg", i18nMark("Playwright browsers"), i18nMark("Reinstall with npx playwright install"), "safari", {"$cache/ms-playwright", "PLAYWRIGHT_BROWSERS_PATH"}, CleanupTarget::DeleteContents{}},
    {"puppeteer", i18nMark("Puppeteer browsers"), i18nMark("Downloaded again on demand"), "safari", {"$cache/puppeteer", "PUPPETEER_CACHE_DIR"}, CleanupTarget::DeleteContents{}},
    {"cypress", i18nMark("Cypress versions"), i18nMark("Reinstall with npx cypress install"), "safari", {"$cache/Cypress", "CYPRESS_CACHE_FOLDER"}, CleanupTarget::DeleteContents{}},
    {"electron", i18nMark("Electron downloads"), i18nMark("Downloaded again on demand"), "shippingbox", {"$cache/electron", "ELECTRON_CACHE|electron_config_cache"}, CleanupTarget::DeleteContents{}},
    {"torch", i18nMark("PyTorch hub"), i18nMark("Downloaded again on demand"), "brain", {"$cache/torch/hub", "TORCH_HOME/hub"}, CleanupTarget::DeleteContents{}},
    {"podman", i18nMark("Unused Podman data"), i18nMark("Removes stopped containers and unused images"), "cube", {"$data/containers/storage"}, CleanupTarget::Command{"podman system prune -a -f"}},
    {"flatpak", i18nMark("Unused Flatpak runtimes"), i18nMark("No app uses them"), "shippingbox", {"$data/flatpak/runtime", "FLATPAK_USER_DIR/runtime"}, CleanupTarget::Command{"flatpak uninstall --user --unused -y", "FLATPAK_USER_DIR/runtime"}},
    {"thumbnails", i18nMark("Thumbnails"), i18nMark("Recreated as you browse"), "photo", {"$cache/thumbnails"}, CleanupTarget::DeleteContents{}},
});
// clang-format on

}  // namespace spacemint
