#include "core/base/BinaryPropertyList.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace spacemint {

namespace {

// The document: an eight byte mark, objects, a table of their offsets, and a trailer of 32 bytes. An object
// begins with a byte whose upper half is its type and whose lower half is its length; 15 means that the
// length follows as an integer object. Arrays and sets hold references to objects, dictionaries twice as
// many.
class Layout {
 public:
  static std::optional<Layout> of(std::string_view document) {
    constexpr std::size_t trailerSize = 32;
    if (document.size() < trailerSize) return std::nullopt;
    const std::size_t trailer = document.size() - trailerSize;
    Layout layout{document.substr(0, trailer)};
    layout.offsetSize_ = number(document.substr(trailer + 6, 1));
    layout.referenceSize_ = number(document.substr(trailer + 7, 1));
    layout.objects_ = number(document.substr(trailer + 8, 8));
    layout.table_ = number(document.substr(trailer + 24, 8));
    const auto isWordSize = [](std::uint64_t size) { return size >= 1 && size <= 8; };
    if (!isWordSize(layout.offsetSize_) || !isWordSize(layout.referenceSize_) || layout.table_ > trailer ||
        layout.objects_ > (trailer - layout.table_) / layout.offsetSize_) {
      return std::nullopt;
    }
    return layout;
  }

  std::uint64_t objects() const { return objects_; }

  bool isContainer(std::uint64_t object) const {
    const std::uint64_t start = offset(object);
    return start < document_.size() && static_cast<unsigned char>(document_[start]) >= firstContainer;
  }

  // What a container holds; absent for one that is cut off.
  std::optional<std::string_view> references(std::uint64_t container) const {
    const std::uint64_t start = offset(container);
    const auto mark = static_cast<unsigned char>(document_[start]);
    std::string_view rest = document_.substr(start + 1);
    const auto items = takeLength(mark & 0xfU, rest);
    if (!items || *items > document_.size()) return std::nullopt;
    const std::uint64_t size = *items * (mark >= firstDictionary ? 2 : 1) * referenceSize_;
    if (size > rest.size()) return std::nullopt;
    return rest.substr(0, size);
  }

  std::uint64_t takeReference(std::string_view& references) const {
    const std::uint64_t object = number(references.substr(0, referenceSize_));
    references.remove_prefix(referenceSize_);
    return object;
  }

 private:
  static constexpr unsigned char firstContainer = 0xa0;
  static constexpr unsigned char firstDictionary = 0xd0;

  explicit Layout(std::string_view document) : document_(document) {}

  std::uint64_t offset(std::uint64_t object) const {
    return number(document_.substr(table_ + object * offsetSize_, offsetSize_));
  }

  static std::uint64_t number(std::string_view bytes) {
    std::uint64_t result = 0;
    for (const char byte : bytes) result = result << 8U | static_cast<unsigned char>(byte);
    return result;
  }

  static std::optional<std::uint64_t> takeLength(unsigned lowerHalf, std::string_view& rest) {
    if (lowerHalf != 0xf) return lowerHalf;
    if (rest.empty()) return std::nullopt;
    const std::size_t size = std::size_t{1} << (static_cast<unsigned char>(rest.front()) & 0xfU);
    if (size > 8 || size >= rest.size()) return std::nullopt;
    const std::uint64_t length = number(rest.substr(1, size));
    rest.remove_prefix(1 + size);
    return length;
  }

  std::string_view document_;
  std::uint64_t offsetSize_ = 0;
  std::uint64_t referenceSize_ = 0;
  std::uint64_t objects_ = 0;
  std::uint64_t table_ = 0;
};

}  // namespace

bool isPlainBinaryPropertyList(std::string_view document, std::size_t maximumContainers) {
  const auto layout = Layout::of(document);
  if (!layout) return false;
  std::size_t containers = 0;
  std::vector<bool> isUsed(layout->objects());
  for (std::uint64_t object = 0; object < layout->objects(); ++object) {
    if (!layout->isContainer(object)) continue;
    if (++containers > maximumContainers) return false;
    auto references = layout->references(object);
    if (!references) return false;
    while (!references->empty()) {
      const std::uint64_t used = layout->takeReference(*references);
      if (used >= layout->objects()) return false;
      if (!layout->isContainer(used)) continue;
      if (isUsed[used] || used == object) return false;
      isUsed[used] = true;
    }
  }
  return true;
}

}  // namespace spacemint
