#include "core/host/UserFolders.h"

#include "core/base/Translation.h"

#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <string_view>
#include <vector>

namespace spacemint {

namespace {

std::string trimmed(std::string path) {
  while (path.size() > 1 && path.ends_with('/')) path.pop_back();
  return path;
}

// The folder in a variable. Ignores a value that is not an absolute path.
std::optional<std::string> folderVariable(const char* name) {
  const char* value = std::getenv(name);
  if (value == nullptr || *value != '/') return std::nullopt;
  return trimmed(value);
}

std::string homeOfPasswordDatabase() {
  std::vector<char> buffer(16'384);
  passwd entry{};
  passwd* found = nullptr;
  if (getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || found == nullptr ||
      found->pw_dir == nullptr || *found->pw_dir != '/') {
    return "/";
  }
  return trimmed(found->pw_dir);
}

// The folder in `variable`, or by default the folder `relative` in the home folder.
std::string folderOf(const char* variable, std::string_view relative) {
  if (auto folder = folderVariable(variable)) return *folder;
  std::string path = UserFolders::home();
  if (!path.ends_with('/')) path += '/';
  path += relative;
  return path;
}

constexpr std::array<const char*, 8> personalFolders{
    "XDG_DESKTOP_DIR",  "XDG_DOCUMENTS_DIR",   "XDG_DOWNLOAD_DIR",  "XDG_MUSIC_DIR",
    "XDG_PICTURES_DIR", "XDG_PUBLICSHARE_DIR", "XDG_TEMPLATES_DIR", "XDG_VIDEOS_DIR"};

// The value of `name` in a line of user-dirs.dirs: NAME="$HOME/Bilder" or an absolute path, with "\" before
// characters that are special in a shell.
std::optional<std::string> userDirectory(std::string_view line, std::string_view name) {
  if (!line.starts_with(name)) return std::nullopt;
  line.remove_prefix(name.size());
  if (!line.starts_with("=\"")) return std::nullopt;
  line.remove_prefix(2);
  constexpr std::string_view homeMark = "$HOME";
  std::string path;
  if (line.starts_with(homeMark)) {
    path = UserFolders::home();
    line.remove_prefix(homeMark.size());
  }
  for (std::size_t i = 0; i < line.size() && line[i] != '"'; ++i) {
    if (line[i] == '\\' && i + 1 < line.size()) ++i;
    path += line[i];
  }
  if (!path.starts_with('/')) return std::nullopt;
  return trimmed(path);
}

std::optional<std::string> userDirectory(const std::string& name) {
  std::optional<std::string> found;
  std::ifstream file(UserFolders::config() + "/user-dirs.dirs");
  for (std::string line; std::getline(file, line);) {
    if (auto path = userDirectory(line, name)) found = std::move(path);
  }
  return found;
}

}  // namespace

std::optional<std::string> UserFolders::environment(const std::string& name) {
  if (const char* value = std::getenv(name.c_str())) return value;
  const bool isPersonal = std::ranges::find(personalFolders, name) != personalFolders.end();
  return isPersonal ? userDirectory(name) : std::nullopt;
}

std::vector<std::string> UserFolders::personal() {
  std::vector<std::string> folders;
  for (const char* name : personalFolders) {
    const auto folder = environment(name);
    if (folder && folder->starts_with('/') && trimmed(*folder) != home()) folders.push_back(trimmed(*folder));
  }
  return folders;
}

std::string UserFolders::home() {
  const auto folder = folderVariable("HOME");
  return folder ? *folder : homeOfPasswordDatabase();
}

std::string UserFolders::data() {
  return folderOf("XDG_DATA_HOME", ".local/share");
}

std::string UserFolders::config() {
  return folderOf("XDG_CONFIG_HOME", ".config");
}

std::string UserFolders::state() {
  return folderOf("XDG_STATE_HOME", ".local/state");
}

std::string UserFolders::cache() {
  return folderOf("XDG_CACHE_HOME", ".cache");
}

std::string UserFolders::runtime() {
  return folderVariable("XDG_RUNTIME_DIR").value_or("");
}

namespace {

std::string localeOfNumbers() {
  for (const char* variable : {"LC_ALL", "LC_NUMERIC", "LANG"}) {
    const char* value = std::getenv(variable);
    if (value == nullptr || *value == '\0') continue;
    const std::string_view name = value;
    const std::string language{name.substr(0, name.find_first_of(".@"))};
    return language == "C" || language == "POSIX" ? "en" : language;
  }
  return "en";
}

std::string_view languageOf(std::string_view locale) {
  return locale.substr(0, locale.find('_'));
}

}  // namespace

std::string userLocale() {
  const std::string numbers = localeOfNumbers();
  const std::string& sentences = sentenceLanguage();
  const bool fits = sentences == "en" || languageOf(sentences) == languageOf(numbers);
  return fits ? numbers : sentences;
}

}  // namespace spacemint
