#include "core/host/UserFolders.h"

#include <pwd.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <optional>
#include <string_view>
#include <vector>

namespace spacemint {

namespace {

std::string trimmed(std::string path) {
  while (path.size() > 1 && path.ends_with('/')) path.pop_back();
  return path;
}

// Only an absolute path counts; anything else in such a variable is ignored.
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

// Where nothing says otherwise it is in the home folder.
std::string folderOf(const char* variable, std::string_view relative) {
  if (auto folder = folderVariable(variable)) return *folder;
  std::string path = UserFolders::home();
  if (!path.ends_with('/')) path += '/';
  path += relative;
  return path;
}

}  // namespace

std::optional<std::string> UserFolders::environment(const std::string& name) {
  const char* value = std::getenv(name.c_str());
  return value == nullptr ? std::nullopt : std::optional<std::string>{value};
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

std::string userLocale() {
  for (const char* variable : {"LC_ALL", "LC_NUMERIC", "LANG"}) {
    const char* value = std::getenv(variable);
    if (value == nullptr || *value == '\0') continue;
    const std::string_view name = value;
    const std::string language{name.substr(0, name.find_first_of(".@"))};
    return language == "C" || language == "POSIX" ? "en" : language;
  }
  return "en";
}

}  // namespace spacemint
