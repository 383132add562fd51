#include "core/places/CleanupTarget.h"

#include <algorithm>

namespace spacemint {

std::string CleanupTarget::Command::program() const {
  return std::string{line.substr(0, line.find(' '))};
}

std::vector<std::string> CleanupTarget::Command::arguments() const {
  std::vector<std::string> found;
  for (std::string_view rest = line; rest.find(' ') != std::string_view::npos;) {
    rest.remove_prefix(rest.find(' ') + 1);
    found.emplace_back(rest.substr(0, rest.find(' ')));
  }
  return found;
}

std::optional<std::pair<std::string, std::string>> CleanupTarget::Command::pinned(
    std::string_view path) const {
  const std::size_t nameLength = std::min(pin.find('/'), pin.size());
  const std::string_view inside = pin.substr(nameLength);
  if (pin.empty() || !path.ends_with(inside) || path.size() == inside.size()) return std::nullopt;
  // Some of these variables may hold a list of folders.
  if (path.find_first_of(":,") != std::string_view::npos) return std::nullopt;
  path.remove_suffix(inside.size());
  return std::pair{std::string{pin.substr(0, nameLength)}, std::string{path}};
}

std::optional<std::string> CleanupTarget::commandLine() const {
  const auto* command = std::get_if<Command>(&action);
  return command == nullptr ? std::nullopt : std::optional{std::string{command->line}};
}

}  // namespace spacemint
