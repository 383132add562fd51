#include "Spacemint/command/ProgramPath.h"

#include "core/base/NumericOrder.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <string_view>

namespace spacemint {

namespace {

namespace fs = std::filesystem;

// A leading "~" means the home folder.
constexpr std::array<std::string_view, 15> toolFolders{"/opt/homebrew/bin",
                                                       "/opt/homebrew/sbin",
                                                       "/usr/local/bin",
                                                       "~/.orbstack/bin",
                                                       "/Applications/Docker.app/Contents/Resources/bin",
                                                       "~/.docker/bin",
                                                       "~/.local/bin",
                                                       "~/.cargo/bin",
                                                       "~/.bun/bin",
                                                       "~/.volta/bin",
                                                       "~/Library/pnpm",
                                                       "~/go/bin",
                                                       "/usr/local/go/bin",
                                                       "~/.asdf/shims",
                                                       "~/.local/share/mise/shims"};
constexpr std::array<std::string_view, 5> linuxFolders{"/home/linuxbrew/.linuxbrew/bin", "/snap/bin",
                                                       "/var/lib/flatpak/exports/bin", "~/.deno/bin",
                                                       "~/.pyenv/shims"};
constexpr std::array<std::string_view, 4> systemFolders{"/usr/bin", "/bin", "/usr/sbin", "/sbin"};

std::string located(std::string_view folder, const std::string& home) {
  return folder.starts_with('~') ? home + std::string{folder.substr(1)} : std::string{folder};
}

std::vector<std::string> namesIn(const std::string& folder) {
  std::vector<std::string> names;
  std::error_code failure;
  for (fs::directory_iterator entry(folder, failure), end; !failure && entry != end;
       entry.increment(failure)) {
    names.push_back(entry->path().filename().string());
  }
  return names;
}

void addOnce(std::vector<std::string>& list, std::string folder) {
  if (std::ranges::find(list, folder) == list.end()) list.push_back(std::move(folder));
}

void addLines(std::vector<std::string>& list, const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  for (std::string line; std::getline(file, line);) {
    constexpr const char* blanks = " \t\r\v\f";
    const std::size_t first = line.find_first_not_of(blanks);
    if (first == std::string::npos) continue;
    addOnce(list, line.substr(first, line.find_last_not_of(blanks) + 1 - first));
  }
}

std::vector<std::string> systemPath(const std::string& root) {
  std::vector<std::string> folders(systemFolders.begin(), systemFolders.end());
  addLines(folders, root + "/etc/paths");
  auto names = namesIn(root + "/etc/paths.d");
  std::ranges::sort(names);
  for (const std::string& name : names) addLines(folders, root + "/etc/paths.d/" + name);
  return folders;
}

}  // namespace

std::vector<std::string> programPath(const ProgramPlaces& places) {
  std::vector<std::string> path;
  path.reserve(toolFolders.size());
  for (const auto folder : toolFolders) path.push_back(located(folder, places.home));
  const std::string nodes = places.home + "/.nvm/versions/node";
  auto versions = namesIn(nodes);
  std::ranges::sort(versions, [](const auto& a, const auto& b) { return numericOrder(b, a) < 0; });
  for (const std::string& version : versions) path.push_back(nodes + "/" + version + "/bin");
  for (const auto folder : linuxFolders) path.push_back(located(folder, places.home));
  for (std::string& folder : systemPath(places.systemRoot)) addOnce(path, std::move(folder));
  return path;
}

}  // namespace spacemint
