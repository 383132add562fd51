#include "core/host/linux/ProcText.h"

#include "core/base/AsciiText.h"

#include <sys/sysmacros.h>

#include <algorithm>
#include <charconv>
#include <utility>

namespace spacemint {

namespace {

bool isOctal(std::string_view digits) {
  return digits.size() == 3 && digits.find_first_not_of("01234567") == std::string_view::npos;
}

template <class Number>
bool parseNumber(std::string_view text, Number& number, int base) {
  const char* end = text.data() + text.size();
  const auto [stop, failure] = std::from_chars(text.data(), end, number, base);
  return failure == std::errc{} && stop == end;
}

// start-end permissions offset major:minor inode path
std::optional<DeletedMapping> parseMapping(std::string_view line) {
  // Most lines show no deleted file.
  if (!line.ends_with(" (deleted)")) return std::nullopt;
  const std::size_t slash = line.find(" /");
  if (slash == std::string_view::npos) return std::nullopt;
  const auto words = pieces(line.substr(0, slash), ' ');
  auto path = deletedPath(line.substr(slash + 1));
  if (words.size() != 5 || !path) return std::nullopt;
  DeletedMapping mapping{.range = std::string{words[0]}, .path = withoutKernelEscapes(*path)};
  const auto device = parseDeviceNumber(words[3], 16);
  if (!device || !parseNumber(words[4], mapping.inode, 10)) return std::nullopt;
  mapping.device = *device;
  return mapping;
}

}  // namespace

std::optional<std::string> deletedPath(std::string_view link) {
  constexpr std::string_view mark = " (deleted)";
  if (!link.starts_with('/') || !link.ends_with(mark)) return std::nullopt;
  return std::string{link.substr(0, link.size() - mark.size())};
}

std::vector<DeletedMapping> parseDeletedMappings(std::string_view text) {
  std::vector<DeletedMapping> mappings;
  for (const std::string_view line : lines(text)) {
    auto mapping = parseMapping(line);
    if (!mapping) continue;
    const auto isSameFile = [&](const DeletedMapping& other) {
      return other.device == mapping->device && other.inode == mapping->inode;
    };
    if (std::ranges::none_of(mappings, isSameFile)) mappings.push_back(std::move(*mapping));
  }
  return mappings;
}

std::optional<std::uint64_t> parseDeviceNumber(std::string_view text, int base) {
  const std::size_t colon = text.find(':');
  if (colon == std::string_view::npos) return std::nullopt;
  unsigned major = 0;
  unsigned minor = 0;
  if (!parseNumber(text.substr(0, colon), major, base) || !parseNumber(text.substr(colon + 1), minor, base)) {
    return std::nullopt;
  }
  return makedev(major, minor);
}

std::string withoutKernelEscapes(std::string_view text) {
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::string_view digits = text.substr(i + 1).substr(0, 3);
    if (text[i] != '\\' || !isOctal(digits)) {
      plain += text[i];
      continue;
    }
    const int code = (digits[0] - '0') * 64 + (digits[1] - '0') * 8 + (digits[2] - '0');
    plain += static_cast<char>(code);
    i += 3;
  }
  return plain;
}

}  // namespace spacemint
