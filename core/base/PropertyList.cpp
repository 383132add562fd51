#include "core/base/PropertyList.h"

#include "core/base/Unicode.h"

namespace spacemint {

namespace {

constexpr std::size_t largestDocument = std::size_t{1} << 30U;

}  // namespace

// A document is UTF-16 if it starts with a byte order mark or with "<" in UTF-16.
std::optional<PropertyDictionary> parsePropertyList(std::string_view document,
                                                    std::span<const char* const> keys) {
  using namespace std::string_view_literals;
  if (document.size() > largestDocument) return std::nullopt;
  if (document.starts_with("bplist")) return parseBinaryPropertyList(document, keys);
  for (const bool isBigEndian : {true, false}) {
    const std::string_view mark = isBigEndian ? "\xfe\xff"sv : "\xff\xfe"sv;
    const std::string_view start = isBigEndian ? "\0<"sv : "<\0"sv;
    if (document.starts_with(mark)) document.remove_prefix(mark.size());
    if (document.starts_with(start)) return parseXmlPropertyList(utf8FromUtf16(document, isBigEndian), keys);
  }
  constexpr std::string_view utf8Mark = "\xef\xbb\xbf";
  if (document.starts_with(utf8Mark)) document.remove_prefix(utf8Mark.size());
  return parseXmlPropertyList(document, keys);
}

}  // namespace spacemint
