#include "core/base/PropertyList.h"

#include "core/base/BinaryPropertyList.h"
#include "core/base/DateSeconds.h"

#include <plist/plist.h>

#include <limits>
#include <memory>

namespace spacemint {

namespace {

// The dates of property lists count from 2001-01-01.
constexpr std::chrono::seconds epoch{978'307'200};

using List = std::unique_ptr<void, decltype([](void* list) { plist_free(list); })>;

std::size_t count(std::string_view text, std::string_view piece) {
  std::size_t found = 0;
  for (std::size_t at = 0; (at = text.find(piece, at)) != std::string_view::npos; at += piece.size()) ++found;
  return found;
}

bool hasManyXmlContainers(std::string_view document) {
  return count(document, "<array") + count(document, "<dict") > maximumContainers;
}

PropertyValue value(plist_t node) {
  const int type = plist_get_node_type(node);  // newer libraries know more types
  switch (type) {
    case PLIST_BOOLEAN: {
      std::uint8_t truth = 0;
      plist_get_bool_val(node, &truth);
      return truth != 0;
    }
    case PLIST_UINT: {
      std::uint64_t number = 0;
      plist_get_uint_val(node, &number);
      return static_cast<std::int64_t>(number);  // that is how the format stores negative numbers
    }
    case PLIST_REAL: {
      double number = 0;
      plist_get_real_val(node, &number);
      return number;
    }
    case PLIST_STRING: {
      // The library's other way to a string stops the process where there is a NUL in it.
      std::uint64_t length = 0;
      const char* text = plist_get_string_ptr(node, &length);
      return text == nullptr ? std::string{} : std::string{text, length};
    }
    case PLIST_DATE: {
      std::int32_t seconds = 0;
      std::int32_t microseconds = 0;
      plist_get_date_val(node, &seconds, &microseconds);
      const auto date =
          dateAfter(epoch, static_cast<double>(seconds) + static_cast<double>(microseconds) / 1e6);
      return date ? PropertyValue{*date} : PropertyValue{};
    }
    default:
      return {};
  }
}

List parsed(std::string_view document, bool isBinary) {
  plist_t list = nullptr;
  const auto size = static_cast<std::uint32_t>(document.size());
  if (isBinary) {
    plist_from_bin(document.data(), size, &list);
  } else {
    plist_from_xml(document.data(), size, &list);
  }
  return List{list};
}

}  // namespace

std::optional<PropertyDictionary> parsePropertyList(std::string_view document,
                                                    std::span<const char* const> keys) {
  if (document.size() > std::numeric_limits<std::uint32_t>::max()) return std::nullopt;
  const bool isBinary = document.starts_with("bplist");
  if (isBinary ? !isPlainBinaryPropertyList(document, maximumContainers) : hasManyXmlContainers(document)) {
    return std::nullopt;
  }
  const List list = parsed(document, isBinary);
  if (!list || plist_get_node_type(list.get()) != PLIST_DICT) return std::nullopt;
  PropertyDictionary dictionary;
  for (const char* key : keys) {
    plist_t node = plist_dict_get_item(list.get(), key);
    if (node != nullptr) dictionary.emplace(key, value(node));
  }
  return dictionary;
}

}  // namespace spacemint
