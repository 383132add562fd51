#include "core/tree/Paths.h"

#include "core/base/AsciiText.h"
#include "core/base/Unicode.h"

#include <array>
#include <cstdint>
#include <cstdio>

namespace spacemint {

std::string Paths::join(std::string_view base, std::string_view name) {
  std::string path;
  path.reserve(base.size() + 1 + name.size());
  path += base;
  if (!base.ends_with('/')) path += '/';
  path += name;
  return path;
}

std::string Paths::logical(std::string_view path) {
  const auto length = canonicalPrefixLength(path, dataVolume);
  if (!length) return std::string{path};
  const std::string_view rest = path.substr(*length);
  return rest.empty() ? "/" : std::string{rest};
}

std::string Paths::display(std::string_view path, std::string_view home) {
  const std::string shortPath = logical(path);
  if (home.empty()) return shortPath;
  if (canonicallyEqual(shortPath, home)) return "~";
  const auto length = canonicalPrefixLength(shortPath, join(home, ""));
  if (!length) return shortPath;
  return "~/" + shortPath.substr(*length);
}

std::string Paths::plain(std::string_view path) {
  std::string plain;
  for (const std::string_view name : pieces(path, '/')) {
    if (name != ".") (plain += '/') += name;
  }
  return plain.empty() ? "/" : plain;
}

std::string Paths::lastComponent(std::string_view path) {
  const std::string_view trimmed = withoutTrailingSlash(path);
  const std::size_t slash = trimmed.rfind('/');
  if (slash == std::string_view::npos || trimmed == "/") return std::string{trimmed};
  return std::string{trimmed.substr(slash + 1)};
}

std::string Paths::parent(std::string_view path) {
  const std::size_t slash = withoutTrailingSlash(path).rfind('/');
  if (slash == 0 || slash == std::string_view::npos) return "/";
  return std::string{path.substr(0, slash)};
}

std::string Paths::hash(std::string_view path) {
  std::uint64_t hash = 0xcbf2'9ce4'8422'2325;
  for (const char byte : path) hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100'0000'01b3;
  std::array<char, 17> digits{};
  std::snprintf(digits.data(), digits.size(), "%016llx", static_cast<unsigned long long>(hash));
  return digits.data();
}

std::string_view Paths::withoutTrailingSlash(std::string_view path) {
  while (path.size() > 1 && path.ends_with('/')) path.remove_suffix(1);
  return path;
}

}  // namespace spacemint
