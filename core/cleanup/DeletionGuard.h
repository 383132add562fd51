#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

/// Decides whether a path may be removed. Every path is checked here before a removal. The guard removes
/// nothing and resolves no links. It works on the text of the path; only `check` reads the item itself, to
/// see if it is a symbolic link. Any thread.
class DeletionGuard {
 public:
  /// Folders that are never removed; their contents may be. All folders above the home folder are protected
  /// too.
  static constexpr std::array<std::string_view, 27> protectedFolders{
      "/",        "/System", "/Library", "/Applications", "/Users",
      "/private", "/usr",    "/bin",     "/sbin",         "/etc",
      "/var",     "/tmp",    "/opt",     "/Volumes",      "/System/Volumes/Data",
      "/home",    "/root",   "/boot",    "/dev",          "/proc",
      "/sys",     "/run",    "/srv",     "/mnt",          "/media",
      "/lib",     "/lib64"};
  /// Protected folders, relative to the home folder; the empty name is the home folder itself.
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
    /// True if the path may be a symbolic link, which is then removed itself.
    bool linkItself = false;
  };

  /// `personal` contains full paths of further protected folders: the user's documents, downloads and so on,
  /// named in the desktop's language.
  explicit DeletionGuard(std::string_view home, std::vector<std::string> personal = {});

  /// Why the path may not be removed, as a phrase that follows the path in a sentence; absent if the path may
  /// be removed.
  std::optional<std::string> check(const Question& question) const;

  /// Like `check`, but with the path in front: "~/Documents is a protected folder". Checks the path as
  /// written and in its plain form (without "." and doubled "/"), so that no other spelling of a protected
  /// folder is allowed.
  std::optional<std::string> refusal(const Question& question) const;

  const std::string& home() const { return home_; }

 private:
  bool isProtected(std::string_view path) const;
  bool holdsHome(std::string_view path) const;

  std::string home_;
  std::vector<std::string> personal_;
};

}  // namespace spacemint
