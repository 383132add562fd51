#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace spacemint {

/// The gate that every path passes before something is removed. It removes nothing and resolves no link;
/// apart from one look at the item itself it works on the text of the path alone. Any thread.
class DeletionGuard {
 public:
  /// Folders that are never removed themselves, whatever lies in them may be. Those that the home folder lies
  /// in are protected too.
  static constexpr std::array<std::string_view, 27> protectedFolders{
      "/",        "/System", "/Library", "/Applications", "/Users",
      "/private", "/usr",    "/bin",     "/sbin",         "/etc",
      "/var",     "/tmp",    "/opt",     "/Volumes",      "/System/Volumes/Data",
      "/home",    "/root",   "/boot",    "/dev",          "/proc",
      "/sys",     "/run",    "/srv",     "/mnt",          "/media",
      "/lib",     "/lib64"};
  /// The same under the home folder; the empty name stands for the home folder.
  static constexpr std::array<std::string_view, 22> protectedInHome{"",
                                                                    "Library",
                                                                    "Desktop",
                                                                    "Documents",
                                                                    "Downloads",
                                                                    "Movies",
                                                                    "Music",
                                                                    "Pictures",
                                                                    "Library/Application Support",
                                                                    "Library/Caches",
                                                                    "Library/Containers",
                                                                    ".Trash",
                                                                    ".config",
                                                                    ".local",
                                                                    ".local/share",
                                                                    ".local/share/Trash",
                                                                    ".cache",
                                                                    ".ssh",
                                                                    ".gnupg",
                                                                    "Videos",
                                                                    "Public",
                                                                    "Templates"};

  struct Question {
    std::string path;
    bool outsideHomeAllowed = false;
    /// Whether a symbolic link may be removed, as a link.
    bool linkItself = false;
  };

  explicit DeletionGuard(std::string_view home);

  /// Why the path may not be removed, as a phrase to put behind it; absent when it may.
  std::optional<std::string> check(const Question& question) const;

  const std::string& home() const { return home_; }

 private:
  bool isProtected(std::string_view path) const;
  bool holdsHome(std::string_view path) const;

  std::string home_;
};

}  // namespace spacemint
