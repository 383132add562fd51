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
  std::string_view title;
  std::string_view advice;
  std::string_view symbol;
  Place place;
};

// clang-format off
inline constexpr auto suggestionPlaces = std::to_array<SuggestionPlace>({
    {"trash", "Trash", "Takes space until emptied", "trash", {".Trash"}},
    {"downloads", "Downloads", "Installers and archives pile up here", "arrow.down.circle", {"Downloads", "XDG_DOWNLOAD_DIR"}},
    {"caches", "App caches", "Apps rebuild what they need", "shippingbox", {"Library/Caches"}},
    {"deriveddata", "Xcode build data", "Safe to delete, Xcode rebuilds it", "hammer", {"Library/Developer/Xcode/DerivedData"}},
    {"archives", "Xcode archives", "Old app builds", "archivebox", {"Library/Developer/Xcode/Archives"}},
    {"devicesupport", "iOS device support", "Comes back when you connect a device", "iphone", {"Library/Developer/Xcode/iOS DeviceSupport"}},
    {"simulators", "Simulators", "Old simulators and their data", "ipad.and.iphone", {"Library/Developer/CoreSimulator"}},
    {"docker", "Docker", "Images, containers and volumes", "cube", {"Library/Containers/com.docker.docker"}},
    {"orbstack", "OrbStack", "Images, containers and machines", "cube", {"Library/Group Containers/HUAQ24HBR6.dev.orbstack"}},
    {"backups", "iPhone & iPad backups", PlatformWords::madeByBackupTool, "externaldrive.badge.timemachine", {"Library/Application Support/MobileSync/Backup"}},
    {"messages", "Messages attachments", "Photos and files from chats", "message", {"Library/Messages/Attachments"}},
    {"devcache", "Developer caches", "Package and model caches in ~/.cache", "shippingbox", {".cache", "XDG_CACHE_HOME"}},
    {"npm", "npm cache", "Packages, downloaded again on demand", "shippingbox", {".npm", "npm_config_cache|NPM_CONFIG_CACHE"}},
    {"pnpm", "pnpm store", "Shared package store", "shippingbox", {"Library/pnpm"}},
    {"gradle", "Gradle caches", "Downloaded again on the next build", "shippingbox", {".gradle/caches", "GRADLE_USER_HOME/caches"}},
    {"maven", "Maven repository", "Downloaded again on the next build", "shippingbox", {".m2/repository"}},
    {"cargo", "Cargo registry", "Crates, downloaded again on demand", "shippingbox", {".cargo/registry", "CARGO_HOME/registry"}},
    {"ollama", "Ollama models", "Local AI models", "brain", {".ollama/models", "OLLAMA_MODELS"}},

    {"trash", "Trash", "Takes space until emptied", "trash", {"$data/Trash"}},
    {"pnpm-xdg", "pnpm store", "Shared package store", "shippingbox", {"$data/pnpm/store", "PNPM_HOME/store"}},
    {"gomod", "Go modules", "Downloaded again on demand", "shippingbox", {"go/pkg/mod", "GOMODCACHE|GOPATH/pkg/mod"}},
    {"rustup", "Rust toolchains", "Remove the ones you no longer use with rustup", "hammer", {".rustup/toolchains", "RUSTUP_HOME/toolchains"}},
    {"conda", "Conda packages", "Downloaded again on demand", "shippingbox", {condaPackages, "CONDA_PKGS_DIRS"}},
    {"podman", "Podman", "Images, containers and volumes", "cube", {"$data/containers"}},
    {"docker-rootless", "Docker (rootless)", "Images, containers and volumes", "cube", {"$data/docker"}},
    {"flatpak", "Flatpak apps", "Apps and runtimes you installed", "shippingbox", {"$data/flatpak", "FLATPAK_USER_DIR"}},
    {"flatpak-data", "Flatpak app data", "Documents, settings and caches of Flatpak apps", "shippingbox", {".var/app"}},
    {"snap-data", "Snap app data", "Documents, settings and caches of Snap apps", "shippingbox", {"snap"}},
    {"steam", "Steam", "Games and shader caches", "archivebox", {"$data/Steam"}},
    {"android-sdk", "Android SDK", "Remove old versions with sdkmanager", "hammer", {"Android/Sdk", "ANDROID_HOME"}},
    {"android-avd", "Android emulators", "Virtual devices and their data", "iphone", {".android/avd", "ANDROID_AVD_HOME"}},
    {"lmstudio", "LM Studio models", "Local AI models", "brain", {".lmstudio/models"}},
    {"apt", "Downloaded packages", "Removed with apt-get clean", "shippingbox", {"/var/cache/apt/archives"}},
    {"journal", "System logs", "Shrunk with journalctl --vacuum-size=500M", "doc", {"/var/log/journal"}},
    {"snapd", "Snap packages", "Old revisions are kept after updates", "shippingbox", {"/var/lib/snapd"}},
    {"flatpak-system", "Flatpak apps (all users)", "Apps and runtimes", "shippingbox", {"/var/lib/flatpak"}},
    {"docker-system", "Docker", "Images, containers and volumes", "cube", {"/var/lib/docker:/var/lib/containerd"}},
});
// clang-format on

/// A folder that a build tool fills, recognized by its name anywhere in the tree.
struct ProjectFolder {
  std::string_view name;
  std::string_view id;
  std::string_view title;
  std::string_view advice;
  std::string_view symbol = "folder.badge.gearshape";
};

inline constexpr auto projectFolders = std::to_array<ProjectFolder>({
    {"node_modules", "node_modules", "node_modules", "Reinstalled with npm install"},
    {".venv", "venv", "Python environments", "Recreated when you need them"},
});

}  // namespace spacemint
