#pragma once

#include "core/base/PlatformWords.h"
#include "core/places/Place.h"

#include <array>
#include <string_view>

namespace spacemint {

/// A folder that tends to become large. The product only shows these folders; `CleanupTarget` lists those
/// that the product can clean.
struct SuggestionPlace {
  /// A key that never changes. Of several rows with the same key, the first one whose folder exists is used.
  std::string_view id;
  const char* title;
  const char* advice;
  std::string_view symbol;
  Place place;
};

// clang-format off
inline constexpr auto suggestionPlaces = std::to_array<SuggestionPlace>({
    {"trash", i18nMark("Trash"), i18nMark("Takes space until emptied"), "trash", {".Trash"}},
    {"downloads", i18nMark("Downloads"), i18nMark("Installers and archives pile up here"), "arrow.down.circle", {"Downloads", "XDG_DOWNLOAD_DIR"}},
    {"caches", i18nMark("App caches"), i18nMark("Apps rebuild what they need"), "shippingbox", {"Library/Caches"}},
    {"deriveddata", i18nMark("Xcode build data"), i18nMark("Safe to delete, Xcode rebuilds it"), "hammer", {"Library/Developer/Xcode/DerivedData"}},
    {"archives", i18nMark("Xcode archives"), i18nMark("Old app builds"), "archivebox", {"Library/Developer/Xcode/Archives"}},
    {"devicesupport", i18nMark("iOS device support"), i18nMark("Comes back when you connect a device"), "iphone", {"Library/Developer/Xcode/iOS DeviceSupport"}},
    {"simulators", i18nMark("Simulators"), i18nMark("Old simulators and their data"), "ipad.and.iphone", {"Library/Developer/CoreSimulator"}},
    {"docker", i18nMark("Docker"), i18nMark("Images, containers and volumes"), "cube", {"Library/Containers/com.docker.docker"}},
    {"orbstack", "OrbStack", i18nMark("Images, containers and machines"), "cube", {"Library/Group Containers/HUAQ24HBR6.dev.orbstack"}},
    {"backups", i18nMark("iPhone & iPad backups"), PlatformWords::madeByBackupTool, "externaldrive.badge.timemachine", {"Library/Application Support/MobileSync/Backup"}},
    {"messages", i18nMark("Messages attachments"), i18nMark("Photos and files from chats"), "message", {"Library/Messages/Attachments"}},
    {"devcache", i18nMark("Developer caches"), i18nMark("Package and model caches in ~/.cache"), "shippingbox", {".cache", "XDG_CACHE_HOME"}},
    {"npm", i18nMark("npm cache"), i18nMark("Packages, downloaded again on demand"), "shippingbox", {".npm", "npm_config_cache|NPM_CONFIG_CACHE"}},
    {"pnpm", i18nMark("pnpm store"), i18nMark("Shared package store"), "shippingbox", {"Library/pnpm"}},
    {"gradle", i18nMark("Gradle caches"), i18nMark("Downloaded again on the next build"), "shippingbox", {".gradle/caches", "GRADLE_USER_HOME/caches"}},
    {"maven", i18nMark("Maven repository"), i18nMark("Downloaded again on the next build"), "shippingbox", {".m2/repository"}},
    {"cargo", i18nMark("Cargo registry"), i18nMark("Crates, downloaded again on demand"), "shippingbox", {".cargo/registry", "CARGO_HOME/registry"}},
    {"ollama", i18nMark("Ollama models"), i18nMark("Local AI models"), "brain", {".ollama/models", "OLLAMA_MODELS"}},

    {"trash", i18nMark("Trash"), i18nMark("Takes space until emptied"), "trash", {"$data/Trash"}},
    {"pnpm-xdg", i18nMark("pnpm store"), i18nMark("Shared package store"), "shippingbox", {"$data/pnpm/store", "PNPM_HOME/store"}},
    {"gomod", i18nMark("Go modules"), i18nMark("Downloaded again on demand"), "shippingbox", {"go/pkg/mod", "GOMODCACHE|GOPATH/pkg/mod"}},
    {"rustup", i18nMark("Rust toolchains"), i18nMark("Remove the ones you no longer use with rustup"), "hammer", {".rustup/toolchains", "RUSTUP_HOME/toolchains"}},
    {"conda", i18nMark("Conda packages"), i18nMark("Downloaded again on demand"), "shippingbox", {condaPackages, "CONDA_PKGS_DIRS"}},
    {"podman", i18nMark("Podman"), i18nMark("Images, containers and volumes"), "cube", {"$data/containers"}},
    {"docker-rootless", i18nMark("Docker (rootless)"), i18nMark("Images, containers and volumes"), "cube", {"$data/docker"}},
    {"flatpak", i18nMark("Flatpak apps"), i18nMark("Apps and runtimes you installed"), "shippingbox", {"$data/flatpak", "FLATPAK_USER_DIR"}},
    {"flatpak-data", i18nMark("Flatpak app data"), i18nMark("Documents, settings and caches of Flatpak apps"), "shippingbox", {".var/app"}},
    {"snap-data", i18nMark("Snap app data"), i18nMark("Documents, settings and caches of Snap apps"), "shippingbox", {"snap"}},
    {"steam", i18nMark("Steam"), i18nMark("Games and shader caches"), "archivebox", {"$data/Steam"}},
    {"android-sdk", i18nMark("Android SDK"), i18nMark("Remove old versions with sdkmanager"), "hammer", {"Android/Sdk", "ANDROID_HOME"}},
    {"android-avd", i18nMark("Android emulators"), i18nMark("Virtual devices and their data"), "iphone", {".android/avd", "ANDROID_AVD_HOME"}},
    {"lmstudio", i18nMark("LM Studio models"), i18nMark("Local AI models"), "brain", {".lmstudio/models"}},
    {"apt", i18nMark("Downloaded packages"), i18nMark("Removed with apt-get clean"), "shippingbox", {"/var/cache/apt/archives"}},
    {"journal", i18nMark("System logs"), i18nMark("Shrunk with journalctl --vacuum-size=500M"), "doc", {"/var/log/journal"}},
    {"snapd", i18nMark("Snap packages"), i18nMark("Old revisions are kept after updates"), "shippingbox", {"/var/lib/snapd"}},
    {"flatpak-system", i18nMark("Flatpak apps (all users)"), i18nMark("Apps and runtimes"), "shippingbox", {"/var/lib/flatpak"}},
    {"docker-system", i18nMark("Docker"), i18nMark("Images, containers and volumes"), "cube", {"/var/lib/docker:/var/lib/containerd"}},
});
// clang-format on

/// A folder that a build tool fills, recognized by its name anywhere in the tree.
struct ProjectFolder {
  std::string_view name;
  std::string_view id;
  const char* title;
  const char* advice;
  std::string_view symbol = "folder.badge.gearshape";
};

inline constexpr auto projectFolders = std::to_array<ProjectFolder>({
    {"node_modules", "node_modules", i18nMark("node_modules"), i18nMark("Reinstalled with npm install")},
    {".venv", "venv", i18nMark("Python environments"), i18nMark("Recreated when you need them")},
});

}  // namespace spacemint
