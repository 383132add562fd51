#include "spacemintctl/browse/Cells.h"

#include "core/base/AsciiText.h"
#include "core/base/Unicode.h"

#include <algorithm>
#include <cwchar>
#include <utility>

namespace spacemint::ctl {

namespace {

constexpr std::string_view replacement = "\xef\xbf\xbd";
constexpr std::string_view ellipsis = "…";

struct Character {
  char32_t code = 0;
  std::size_t bytes = 1;
};

// The first character of valid UTF-8 that is not empty.
Character first(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char lead = byte(0);
  const std::size_t bytes = lead < 0x80 ? 1 : lead < 0xe0 ? 2 : lead < 0xf0 ? 3 : 4;
  if (bytes == 1 || bytes > text.size()) return {.code = lead};
  char32_t code = lead & (0xffU >> (bytes + 1));
  for (std::size_t i = 1; i < bytes; ++i) code = (code << 6U) | (byte(i) & 0x3fU);
  return {.code = code, .bytes = bytes};
}

int widthOf(char32_t code) {
  return wcwidth(static_cast<wchar_t>(code));
}

bool changesDirection(char32_t code) {
  return code == 0x061c || code == 0x200e || code == 0x200f || (code >= 0x202a && code <= 0x202e) ||
         (code >= 0x2066 && code <= 0x2069);
}

// Invisible characters that scripts and emoji need.
bool joins(char32_t code) {
  return code == 0x200c || code == 0x200d || (code >= 0xfe00 && code <= 0xfe0f);
}

// Other invisible characters without a width of their own: soft hyphens, fillers, tags.
bool isHidden(char32_t code) {
  return code == 0x00ad || code == 0x115f || code == 0x1160 || code == 0x180e || code == 0x200b ||
         code == 0x2028 || code == 0x2029 || (code >= 0x2060 && code <= 0x206f) || code == 0x3164 ||
         code == 0xfeff || (code >= 0xfff0 && code <= 0xfffb) || (code >= 0xe0000 && code <= 0xe0fff);
}

bool isShown(char32_t code) {
  if (joins(code)) return true;
  return code >= 0x20 && !changesDirection(code) && !isHidden(code) && widthOf(code) >= 0;
}

// The bytes of the first character with the marks that combine with it.
std::size_t clusterLength(std::string_view text) {
  std::size_t length = first(text).bytes;
  while (length < text.size()) {
    const Character next = first(text.substr(length));
    if (widthOf(next.code) > 0) break;
    length += next.bytes;
  }
  return length;
}

// The longest start of whole clusters that fits.
std::string_view startOf(std::string_view shown, std::size_t width) {
  std::size_t length = 0;
  std::size_t used = 0;
  while (length < shown.size()) {
    const std::size_t cluster = clusterLength(shown.substr(length));
    used += columnsOf(shown.substr(length, cluster));
    if (used > width) break;
    length += cluster;
  }
  return shown.substr(0, length);
}

}  // namespace

std::string shownText(std::string_view text) {
  const std::string valid = withInvalidUtf8Replaced(text);
  std::string shown;
  shown.reserve(valid.size());
  for (std::string_view rest = valid; !rest.empty();) {
    const Character next = first(rest);
    shown += isShown(next.code) ? rest.substr(0, next.bytes) : replacement;
    rest.remove_prefix(next.bytes);
  }
  return shown;
}

std::size_t columnsOf(std::string_view shown) {
  std::size_t columns = 0;
  while (!shown.empty()) {
    const Character next = first(shown);
    const int width = widthOf(next.code);
    columns += width < 0 ? 1 : static_cast<std::size_t>(width);
    shown.remove_prefix(next.bytes);
  }
  return columns;
}

std::string fitted(std::string_view shown, std::size_t width, Side side) {
  std::string text{shown};
  std::size_t columns = columnsOf(shown);
  if (columns > width) {
    text = width == 0 ? std::string{} : std::string{startOf(shown, width - 1)}.append(ellipsis);
    columns = columnsOf(text);
  }
  const std::string padding(width - columns, ' ');
  return side == Side::left ? text + padding : padding + text;
}

std::string endOf(std::string_view shown, std::size_t width) {
  std::size_t columns = columnsOf(shown);
  if (columns <= width || width == 0) return std::string{width == 0 ? "" : shown};
  while (columns > width - 1) {
    const std::size_t cluster = clusterLength(shown);
    columns -= columnsOf(shown.substr(0, cluster));
    shown.remove_prefix(cluster);
  }
  return std::string{ellipsis}.append(shown);
}

std::vector<std::string> wrapped(std::string_view shown, std::size_t width) {
  std::vector<std::string> lines;
  std::string line;
  const auto endLine = [&] { lines.push_back(std::exchange(line, {})); };
  for (std::string_view word : pieces(shown, ' ')) {
    if (!line.empty() && columnsOf(line) + 1 + columnsOf(word) > width) endLine();
    if (!line.empty()) line += ' ';
    while (columnsOf(word) > width) {
      const std::string_view part = startOf(word, width);
      if (part.empty()) return lines;  // no room for even one character
      line += part;
      word.remove_prefix(part.size());
      endLine();
    }
    line += word;
  }
  if (!line.empty()) endLine();
  return lines;
}

}  // namespace spacemint::ctl
