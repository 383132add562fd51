#include "core/base/PropertyList.h"

#include "core/base/DateSeconds.h"

#include <plist/plist.h>

#include <cstdlib>
#include <limits>
#include <memory>
#include <span>

namespace spacemint {

namespace {

// The dates of property lists count from 2001-01-01.
constexpr std::chrono::seconds epoch{978'307'200};

using List = std::unique_ptr<void, decltype([](void* list) { plist_free(list); })>;
using Iterator = std::unique_ptr<void, decltype([](void* iterator) { std::free(iterator); })>;
using Text = std::unique_ptr<char, decltype([](char* text) { std::free(text); })>;

std::size_t count(std::string_view text, std::string_view piece) {
  std::size_t found = 0;
  for (std::size_t at = 0; (at = text.find(piece, at)) != std::string_view::npos; at += piece.size()) ++found;
  return found;
}

std::uint64_t bigEndian(std::string_view bytes) {
  std::uint64_t number = 0;
  for (const char byte : bytes) number = number << 8U | static_cast<unsigned char>(byte);
  return number;
}

// Counted through the table of objects at the end of the document, which the last 32 bytes describe: the size
// of an offset, the number of objects and where the table begins. Absent where that makes no sense.
std::optional<std::size_t> containersOfBinary(std::string_view document) {
  constexpr std::size_t trailerSize = 32;
  if (document.size() < trailerSize) return std::nullopt;
  const std::string_view trailer = document.substr(document.size() - trailerSize);
  const std::uint64_t offsetSize = bigEndian(trailer.substr(6, 1));
  const std::uint64_t objects = bigEndian(trailer.substr(8, 8));
  const std::uint64_t table = bigEndian(trailer.substr(24, 8));
  if (offsetSize < 1 || offsetSize > 8 || table > document.size()) return std::nullopt;
  if (objects > (document.size() - table) / offsetSize) return std::nullopt;
  std::size_t containers = 0;
  for (std::uint64_t i = 0; i < objects; ++i) {
    const std::uint64_t offset = bigEndian(document.substr(table + i * offsetSize, offsetSize));
    if (offset >= document.size()) return std::nullopt;
    if (static_cast<unsigned char>(document[offset]) >= 0xa0) ++containers;  // arrays, sets, dictionaries
  }
  return containers;
}

std::optional<std::size_t> containers(std::string_view document, bool isBinary) {
  return isBinary ? containersOfBinary(document) : count(document, "<array") + count(document, "<dict");
}

std::string takeText(char* text) {
  const Text owner{text};
  return text == nullptr ? "" : text;
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
      char* text = nullptr;
      plist_get_string_val(node, &text);
      return takeText(text);
    }
    case PLIST_DATE: {
      std::int32_t seconds = 0;
      std::int32_t microseconds = 0;
      plist_get_date_val(node, &seconds, &microseconds);
      const auto date = dateAfter(epoch, static_cast<double>(seconds) + static_cast<double>(microseconds) / 1e6);
      return date ? PropertyValue{*date} : PropertyValue{};
    }
    default: return {};
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

std::optional<PropertyDictionary> parsePropertyList(std::string_view document) {
  if (document.size() > std::numeric_limits<std::uint32_t>::max()) return std::nullopt;
  const bool isBinary = document.starts_with("bplist");
  const auto containerCount = containers(document, isBinary);
  if (!containerCount || *containerCount > maximumContainers) return std::nullopt;
  const List list = parsed(document, isBinary);
  if (!list || plist_get_node_type(list.get()) != PLIST_DICT) return std::nullopt;

  plist_dict_iter start = nullptr;
  plist_dict_new_iter(list.get(), &start);
  const Iterator iterator{start};
  PropertyDictionary dictionary;
  for (;;) {
    char* key = nullptr;
    plist_t node = nullptr;
    plist_dict_next_item(list.get(), iterator.get(), &key, &node);
    const Text owner{key};
    if (node == nullptr) return dictionary;
    if (key != nullptr) dictionary.insert_or_assign(key, value(node));
  }
}

}  // namespace spacemint
