#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

/// The gate that every path passes before something is removed. It removes nothing and resolves no link. It
/// works on the text of the path; only `check` looks at the item itself, once. Any thread.
class DeletionGuard {
 public:
  /// Folders that are never removed themselves; what lies in them may be. The folders above the home folder
  /// are protected too.
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

  /// `personal` are folders that are protected like those of `protectedInHome`: the user's documents,
  /// downloads and so on, in the language of the desktop.
  explicit DeletionGuard(std::string_view home, std::vector<std::string> personal = {});

  /// Why the path may not be removed, as a phrase to put behind it; absent when it may.
  std::optional<std::string> check(const Question& question) const;

  /// The same as a complete sentence part, "~/Documents is a protected folder". Asks about the path as it is
  /// written and as the system will read it (without single "." and doubled "/"), so that no spelling of a
  /// protected folder gets through.
  std::optional<std::string> refusal(const Question& question) const;

  const std::string& home() const { return home_; }

 private:
  bool isProtected(std::string_view path) const;
  bool holdsHome(std::string_view path) const;

  std::string home_;
  std::vector<std::string> personal_;
};

}  // namespace spacemint
