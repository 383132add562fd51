#include "core/base/DateSeconds.h"
#include "core/base/Unicode.h"
#include "core/history/SnapshotCodec.h"
#include "core/history/SnapshotKeys.h"

#include <array>
#include <charconv>
#include <cmath>
#include <concepts>
#include <exception>
#include <utility>

namespace spacemint {

namespace {

// True for bytes that a JSON string contains unescaped. JSON allows a plain "/", but stored scans have always
// escaped "/".
constexpr auto isPlain = [] {
  std::array<bool, 256> plain{};
  for (std::size_t byte = 0x20; byte < plain.size(); ++byte) plain.at(byte) = true;
  for (const char special : {'"', '\\', '/'}) plain.at(static_cast<unsigned char>(special)) = false;
  return plain;
}();

void appendEscape(std::string& text, char c) {
  constexpr std::string_view letters = "\b\f\n\r\t\"\\/";
  constexpr std::string_view escapes = "bfnrt\"\\/";
  text += '\\';
  if (const std::size_t at = letters.find(c); at != std::string_view::npos) {
    text += escapes[at];
    return;
  }
  constexpr std::string_view digits = "0123456789abcdef";
  const auto byte = static_cast<unsigned char>(c);
  text += "u00";
  text += digits[byte >> 4U];
  text += digits[byte & 0xfU];
}

void appendString(std::string& text, std::string_view value) {
  text += '"';
  while (!value.empty()) {
    std::size_t plain = 0;
    while (plain < value.size() && isPlain[static_cast<unsigned char>(value[plain])]) ++plain;
    text += value.substr(0, plain);
    value.remove_prefix(plain);
    if (value.empty()) break;
    appendEscape(text, value.front());
    value.remove_prefix(1);
  }
  text += '"';
}

void appendName(std::string& text, std::string_view name) {
  if (isAscii(name) || isValidUtf8(name)) return appendString(text, name);
  appendString(text, withInvalidUtf8Replaced(name));
}

// Writes a finite double as the shortest text that reads back as the same value.
template <class Number>
void appendNumber(std::string& text, Number number) {
  std::array<char, 32> digits{};
  const auto result = std::to_chars(digits.data(), digits.data() + digits.size(), number);
  text.append(digits.data(), result.ptr);
}

std::int64_t roundedToSeconds(Date date) {
  constexpr std::int64_t second = 1'000'000;
  const std::int64_t micros = date.time_since_epoch().count();
  const std::int64_t rest = micros % second;
  const std::int64_t carry = rest >= second / 2 ? 1 : rest <= -second / 2 ? -1 : 0;
  return micros / second + carry;
}

// Writes all fields of a node except its children, without the closing brace.
void appendFields(std::string& text, const Node& node) {
  text += R"({"name":)";
  appendName(text, node.name);
  text += R"(,"size":)";
  appendNumber(text, node.size);
  if (node.isDirectory) text += R"(,"isDirectory":true)";
  if (node.modified) {
    text += R"(,"modified":)";
    appendNumber(text, roundedToSeconds(*node.modified));
  }
  if (node.fileCount >= 1) {
    text += R"(,"fileCount":)";
    appendNumber(text, node.fileCount);
  }
  if (node.isWorktree) text += R"(,"isWorktree":true)";
}

// False if the tree is deeper than the decoder accepts.
bool appendTree(std::string& text, const Node& root) {
  struct Level {
    const Node* node;
    std::size_t nextChild;
  };
  std::vector<Level> levels{{&root, 0}};
  appendFields(text, root);
  while (!levels.empty()) {
    Level& top = levels.back();
    const auto& children = top.node->children;
    if (top.nextChild == children.size()) {
      text += children.empty() ? "}" : "]}";
      levels.pop_back();
      continue;
    }
    if (levels.size() == Node::maximumDepth) return false;
    text += top.nextChild == 0 ? R"(,"children":[)" : ",";
    const Node& child = children[top.nextChild++];
    appendFields(text, child);
    levels.push_back({&child, 0});
  }
  return true;
}

void appendField(std::string& text, std::string_view key, const std::string& value) {
  text.append(text.ends_with('{') ? "\"" : ",\"").append(key).append("\":");
  appendName(text, value);
}

template <std::integral Number>
void appendField(std::string& text, std::string_view key, Number value) {
  text.append(text.ends_with('{') ? "\"" : ",\"").append(key).append("\":");
  appendNumber(text, value);
}

// Appends an array of objects; nothing if it is empty.
template <class Item>
void appendList(std::string& text, std::string_view key, const std::vector<Item>& items,
                void (*appendItem)(std::string&, const Item&)) {
  for (std::size_t i = 0; i < items.size(); ++i) {
    text += i == 0 ? ",\"" + std::string{key} + "\":[{" : ",{";
    appendItem(text, items[i]);
    text += '}';
  }
  if (!items.empty()) text += ']';
}

void appendPlace(std::string& text, const CoveredPlace& covered) {
  appendField(text, "mountPoint", covered.place.mountPoint);
  appendField(text, "root", covered.place.root);
  appendField(text, "fileSystem", covered.place.fileSystem);
  appendField(text, "pool", covered.place.pool);
  appendField(text, "size", covered.size);
  appendField(text, "folderBytes", covered.folderBytes);
  appendField(text, "fileCount", covered.fileCount);
  appendField(text, "volumeTotal", covered.volumeTotal);
  appendField(text, "volumeFree", covered.volumeFree);
  if (covered.inlineBytes != 0) appendField(text, "inlineBytes", covered.inlineBytes);
}

void appendLeftOut(std::string& text, const LeftOut& item) {
  appendField(text, "path", item.path);
  appendField(text, "kind", std::string{SnapshotKeys::leftOutKinds[std::to_underlying(item.kind)]});
  if (item.created) appendField(text, "created", roundedToSeconds(*item.created));
  if (item.size) appendField(text, "size", *item.size);
}

void appendCoverage(std::string& text, const Coverage& coverage) {
  appendList(text, "places", coverage.places, appendPlace);
  appendList(text, "leftOut", coverage.leftOut, appendLeftOut);
  appendList<std::string>(text, "unread", coverage.unread.paths,
                          [](std::string& out, const std::string& path) { appendField(out, "path", path); });
  if (coverage.unread.folders > 0) appendField(text, "unreadFolders", coverage.unread.folders);
  if (coverage.unread.entries > 0) appendField(text, "unreadEntries", coverage.unread.entries);
  appendList<std::string>(text, "excludes", coverage.excludes, [](std::string& out, const std::string& each) {
    appendField(out, "pattern", each);
  });
}

void appendFacts(std::string& text, const Snapshot& snapshot) {
  text += R"({"date":)";
  appendNumber(text, secondsSince(SnapshotCodec::epoch, snapshot.date));
  text += R"(,"duration":)";
  appendNumber(text, snapshot.duration.count());
  text += R"(,"fileCount":)";
  appendNumber(text, snapshot.fileCount);
  text += R"(,"volumeFree":)";
  appendNumber(text, snapshot.volumeFree);
  text += R"(,"volumeTotal":)";
  appendNumber(text, snapshot.volumeTotal);
  text += R"(,"minNodeSize":)";
  appendNumber(text, snapshot.minNodeSize);
  if (snapshot.eventID) {
    text += R"(,"eventID":)";
    appendNumber(text, *snapshot.eventID);
  }
  if (snapshot.fullScanDate) {
    text += R"(,"fullScanDate":)";
    appendNumber(text, secondsSince(SnapshotCodec::epoch, *snapshot.fullScanDate));
  }
  if (snapshot.format) {
    text += R"(,"format":)";
    appendNumber(text, *snapshot.format);
  }
  appendCoverage(text, snapshot.coverage);
}

// A slightly high estimate of the document's size in bytes, to allocate the text once.
std::size_t likelySize(const Node& root) {
  constexpr std::size_t facts = 400;
  constexpr std::size_t file = 56;
  constexpr std::size_t folder = 88;
  std::size_t size = facts;
  std::vector<const Node*> open{&root};
  while (!open.empty()) {
    const Node& node = *open.back();
    open.pop_back();
    size += node.name.size() + (node.isDirectory ? folder : file);
    for (const Node& child : node.children) open.push_back(&child);
  }
  return size;
}

Error encodeError(SnapshotCodec::Fault fault, std::string message) {
  return {.domain = std::string{SnapshotCodec::domain},
          .code = static_cast<int>(fault),
          .message = std::move(message)};
}

}  // namespace

std::expected<std::string, Error> SnapshotCodec::encode(const Snapshot& snapshot) {
  if (!std::isfinite(snapshot.duration.count())) {
    return std::unexpected(encodeError(Fault::outOfRange, "\"duration\" is not a finite number"));
  }
  try {
    std::string text;
    text.reserve(likelySize(snapshot.root));
    appendFacts(text, snapshot);
    text += R"(,"root":)";
    if (!appendTree(text, snapshot.root)) {
      return std::unexpected(encodeError(Fault::tooDeep, "the tree is too deep"));
    }
    text += '}';
    return text;
  } catch (const std::exception& failure) {
    return std::unexpected(encodeError(Fault::outOfMemory, failure.what()));
  }
}

}  // namespace spacemint
