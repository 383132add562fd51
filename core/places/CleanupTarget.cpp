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

std::optional<std::string> CleanupTarget::commandLine() const {
  const auto* command = std::get_if<Command>(&action);
  return command == nullptr ? std::nullopt : std::optional{std::string{command->line}};
}

}  // namespace spacemint
