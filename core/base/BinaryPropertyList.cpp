// parseBinaryPropertyList. The document consists of an eight byte mark, the objects, a table of the objects'
// offsets, and a trailer of 32 bytes. The upper half of an object's first byte is its type, the lower half
// its length; length 15 means that an integer object with the length follows. Arrays and sets hold references
// to objects, dictionaries references to keys and then to values. All numbers are big endian.

#include "core/base/DateSeconds.h"
#include "core/base/PropertyList.h"
#include "core/base/Unicode.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace spacemint {

namespace {

std::uint64_t number(std::string_view bytes) {
  std::uint64_t result = 0;
  for (const char byte : bytes) result = result << 8U | static_cast<unsigned char>(byte);
  return result;
}

// An object's first byte, taken apart. `rest` is the document from the second byte on, beyond the object's
// end.
struct Object {
  unsigned type = 0;
  unsigned length = 0;
  std::string_view rest;
};

class Reader {
 public:
  static std::optional<Reader> of(std::string_view document) {
    constexpr std::size_t trailerSize = 32;
    if (document.size() < trailerSize) return std::nullopt;
    const std::string_view trailer = document.substr(document.size() - trailerSize);
    Reader reader;
    reader.document_ = document.substr(0, document.size() - trailerSize);
    reader.offsetSize_ = number(trailer.substr(6, 1));
    reader.referenceSize_ = number(trailer.substr(7, 1));
    reader.objects_ = number(trailer.substr(8, 8));
    reader.top_ = number(trailer.substr(16, 8));
    reader.table_ = number(trailer.substr(24, 8));
    const auto isWordSize = [](std::uint64_t size) { return size >= 1 && size <= 8; };
    if (!isWordSize(reader.offsetSize_) || !isWordSize(reader.referenceSize_) ||
        reader.table_ > reader.document_.size() ||
        reader.objects_ > (reader.document_.size() - reader.table_) / reader.offsetSize_) {
      return std::nullopt;
    }
    return reader;
  }

  std::optional<PropertyDictionary> dictionary(std::span<const char* const> keys) const {
    auto top = object(top_);
    if (!top || top->type != dictionaryType) return std::nullopt;
    const auto count = takeCount(*top);
    if (!count || *count > top->rest.size() / (2 * referenceSize_)) return std::nullopt;
    PropertyDictionary result;
    for (std::uint64_t item = 0; item < *count; ++item) {
      const auto key = object(reference(top->rest, item));
      const auto name = key ? string(*key) : std::nullopt;
      if (!name) return std::nullopt;
      if (std::ranges::find(keys, *name) == keys.end()) continue;
      const auto stored = object(reference(top->rest, *count + item));
      auto value = stored ? valueOf(*stored) : std::nullopt;
      if (!value) return std::nullopt;
      result.emplace(*name, std::move(*value));
    }
    return result;
  }

 private:
  static constexpr unsigned simpleType = 0x0;
  static constexpr unsigned integerType = 0x1;
  static constexpr unsigned realType = 0x2;
  static constexpr unsigned dateType = 0x3;
  static constexpr unsigned asciiType = 0x5;
  static constexpr unsigned utf16Type = 0x6;
  static constexpr unsigned dictionaryType = 0xd;

  std::uint64_t reference(std::string_view references, std::uint64_t index) const {
    return number(references.substr(index * referenceSize_, referenceSize_));
  }

  std::optional<Object> object(std::uint64_t index) const {
    if (index >= objects_) return std::nullopt;
    const std::uint64_t start = number(document_.substr(table_ + index * offsetSize_, offsetSize_));
    if (start >= table_) return std::nullopt;
    const unsigned mark = static_cast<unsigned char>(document_[start]);
    return Object{.type = mark >> 4U, .length = mark & 0xfU, .rest = document_.substr(start + 1)};
  }

  // The number of items or characters. If an integer object holds the number, removes that object from
  // `rest`.
  static std::optional<std::uint64_t> takeCount(Object& object) {
    if (object.length != 0xf) return object.length;
    if (object.rest.empty()) return std::nullopt;
    const unsigned mark = static_cast<unsigned char>(object.rest.front());
    const std::size_t size = std::size_t{1} << (mark & 0xfU);
    if (mark >> 4U != integerType || size > 8 || size >= object.rest.size()) return std::nullopt;
    const std::uint64_t count = number(object.rest.substr(1, size));
    object.rest.remove_prefix(1 + size);
    return count;
  }

  static std::optional<std::string> string(Object object) {
    if (object.type != asciiType && object.type != utf16Type) return std::nullopt;
    const std::size_t unit = object.type == utf16Type ? 2 : 1;
    const auto count = takeCount(object);
    if (!count || *count > object.rest.size() / unit) return std::nullopt;
    const std::string_view bytes = object.rest.substr(0, *count * unit);
    return unit == 2 ? utf8FromUtf16(bytes, true) : withInvalidUtf8Replaced(bytes);
  }

  static std::optional<double> real(const Object& object) {
    const std::size_t size = std::size_t{1} << object.length;
    if ((size != 4 && size != 8) || size > object.rest.size()) return std::nullopt;
    const std::uint64_t bits = number(object.rest.substr(0, size));
    return size == 8 ? std::bit_cast<double>(bits)
                     : static_cast<double>(std::bit_cast<float>(static_cast<std::uint32_t>(bits)));
  }

  // Integers of 1, 2 and 4 bytes are unsigned, those of 8 bytes signed. Of 16 bytes only the lower 8 are
  // used.
  static std::optional<std::int64_t> integer(const Object& object) {
    const std::size_t size = std::size_t{1} << object.length;
    if (size > 16 || size > object.rest.size()) return std::nullopt;
    return std::bit_cast<std::int64_t>(number(object.rest.substr(0, size)));
  }

  static std::optional<PropertyValue> valueOf(const Object& object) {
    const auto asValue = [](auto value) {
      return value ? std::optional<PropertyValue>{*value} : std::nullopt;
    };
    switch (object.type) {
      case simpleType:
        if (object.length == 8 || object.length == 9) return object.length == 9;
        return std::monostate{};
      case integerType:
        return asValue(integer(object));
      case realType:
        return asValue(real(object));
      case dateType: {
        const auto seconds = real(object);
        if (!seconds) return std::nullopt;
        const auto date = dateAfter(propertyListEpoch, *seconds);
        if (!date) return std::monostate{};
        return *date;
      }
      case asciiType:
      case utf16Type:
        return asValue(string(object));
      default:
        return std::monostate{};
    }
  }

  std::string_view document_;  // without the trailer
  std::uint64_t offsetSize_ = 0;
  std::uint64_t referenceSize_ = 0;
  std::uint64_t objects_ = 0;
  std::uint64_t top_ = 0;
  std::uint64_t table_ = 0;
};

}  // namespace

std::optional<PropertyDictionary> parseBinaryPropertyList(std::string_view document,
                                                          std::span<const char* const> keys) {
  const auto reader = Reader::of(document);
  return reader ? reader->dictionary(keys) : std::nullopt;
}

}  // namespace spacemint
