// SnapshotCodec::decode. An event-based parser (SAX) fills the nodes directly; besides the result, memory
// holds one `Level` for each open level of the tree, and closed nodes whose parent is still open.

#include "core/history/SnapshotCodec.h"
#include "core/history/SnapshotKeys.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <exception>
#include <iterator>
#include <span>
#include <utility>

namespace spacemint {

namespace {

using Json = nlohmann::json;
using SnapshotCodec::Fault;
using SnapshotKeys::childrenKey;
using SnapshotKeys::Complaint;
using SnapshotKeys::Key;
using SnapshotKeys::nodeKeys;
using SnapshotKeys::outOfRange;
using SnapshotKeys::Real;
using SnapshotKeys::rootKey;
using SnapshotKeys::Scalar;
using SnapshotKeys::snapshotKeys;

Error decodeError(Fault fault, std::string_view message) {
  return {.domain = std::string{SnapshotCodec::domain},
          .code = static_cast<int>(fault),
          .message = std::string{message}};
}

std::string notJsonAt(std::size_t position) {
  return "not valid JSON at byte " + std::to_string(position);
}

// The keys that were read in an object so far (a bit for each), and the key whose value comes next.
struct KeyState {
  static constexpr std::size_t unknown = 31;
  std::uint32_t seen = 0;
  std::size_t current = unknown;
};

// A node that is still being read.
struct Level {
  Node node;
  KeyState keys;
  bool isInChildren = false;
  std::size_t index = 0;       // among its siblings
  std::size_t firstChild = 0;  // index in `closed_`
};

class SnapshotReader final : public nlohmann::json_sax<Json> {
 public:
  SnapshotReader() { snapshot_.format.reset(); }

  Snapshot& snapshot() { return snapshot_; }
  Error& error() { return error_; }

  bool null() override { return scalar(nullptr); }
  bool boolean(bool value) override { return scalar(value); }
  bool number_integer(std::int64_t value) override { return scalar(value); }
  bool number_unsigned(std::uint64_t value) override { return scalar(value); }
  bool number_float(double value, const std::string& text) override {
    return scalar(Real{.value = value, .isWhole = text.find_first_of(".eE") == std::string::npos});
  }
  bool string(std::string& value) override { return scalar(&value); }
  bool binary(Json::binary_t& /*value*/) override { return false; }  // JSON has no binary values

  bool start_object(std::size_t /*size*/) override;
  bool end_object() override;
  bool start_array(std::size_t /*size*/) override;
  bool end_array() override;
  bool key(std::string& name) override;
  bool parse_error(std::size_t position, const std::string& token, const Json::exception& failure) override;

 private:
  enum class Place { outside, snapshot, list, item, node, children };

  Place place() const;
  std::string placeName() const;
  bool scalar(const Scalar& value);
  bool openNode(std::size_t index);
  bool closeNode();
  bool openList();
  bool openItem();
  bool openIgnored();
  bool fail(Fault fault, std::string_view what);
  bool failAt(std::string_view key, Fault fault, std::string_view what);

  template <class Record>
  bool enter(std::span<const Key<Record>> keys, KeyState& state, std::string_view name);
  template <class Record>
  bool store(std::span<const Key<Record>> keys, const KeyState& state, Record& record, const Scalar& value);
  template <class Record>
  bool isComplete(std::span<const Key<Record>> keys, const KeyState& state);

  Snapshot snapshot_;
  Error error_;
  bool hasBegun_ = false;
  KeyState snapshotState_;
  // The array of the snapshot that is being read; null outside of one.
  const SnapshotKeys::List* list_ = nullptr;
  bool isInItem_ = false;
  KeyState itemState_;
  std::vector<Level> levels_;
  // Complete nodes whose parent is still being read. The parent's `children` are allocated once, in their
  // final size.
  std::vector<Node> closed_;
  std::size_t ignoredLevels_ = 0;
};

SnapshotReader::Place SnapshotReader::place() const {
  if (!levels_.empty()) return levels_.back().isInChildren ? Place::children : Place::node;
  if (list_ != nullptr) return isInItem_ ? Place::item : Place::list;
  return hasBegun_ ? Place::snapshot : Place::outside;
}

bool SnapshotReader::start_object(std::size_t /*size*/) {
  if (ignoredLevels_ > 0) return openIgnored();
  switch (place()) {
    case Place::outside:
      return hasBegun_ = true;
    case Place::children:
      return openNode(closed_.size() - levels_.back().firstChild);
    case Place::snapshot:
      if (snapshotState_.current == rootKey) return openNode(0);
      if (snapshotState_.current == KeyState::unknown) return openIgnored();
      break;
    case Place::list:
      return openItem();
    case Place::item:
      if (itemState_.current == KeyState::unknown) return openIgnored();
      break;
    case Place::node:
      if (levels_.back().keys.current == KeyState::unknown) return openIgnored();
      break;
  }
  return scalar(nullptr);
}

bool SnapshotReader::end_object() {
  if (ignoredLevels_ > 0) return --ignoredLevels_, true;
  if (!levels_.empty()) return closeNode();
  if (std::exchange(isInItem_, false)) return isComplete<Snapshot>(list_->keys, itemState_);
  return isComplete<Snapshot>(snapshotKeys, snapshotState_);
}

bool SnapshotReader::start_array(std::size_t /*size*/) {
  if (ignoredLevels_ > 0) return openIgnored();
  const Place where = place();
  if (where == Place::snapshot) return openList();
  if (where == Place::item && itemState_.current == KeyState::unknown) return openIgnored();
  if (where != Place::node) return scalar(nullptr);
  Level& level = levels_.back();
  if (level.keys.current == KeyState::unknown) return openIgnored();
  if (level.keys.current != childrenKey) return scalar(nullptr);
  level.firstChild = closed_.size();
  return level.isInChildren = true;
}

bool SnapshotReader::end_array() {
  if (ignoredLevels_ > 0) return --ignoredLevels_, true;
  if (list_ != nullptr) {
    list_ = nullptr;
    return true;
  }
  Level& level = levels_.back();
  const auto first = closed_.begin() + static_cast<std::ptrdiff_t>(level.firstChild);
  level.node.children.assign(std::move_iterator{first}, std::move_iterator{closed_.end()});
  closed_.erase(first, closed_.end());
  level.isInChildren = false;
  return true;
}

bool SnapshotReader::key(std::string& name) {
  if (ignoredLevels_ > 0) return true;
  if (isInItem_) return enter<Snapshot>(list_->keys, itemState_, name);
  if (levels_.empty()) return enter<Snapshot>(snapshotKeys, snapshotState_, name);
  return enter<Node>(nodeKeys, levels_.back().keys, name);
}

// Reports only the position: the parser's own message may quote the document at any length.
bool SnapshotReader::parse_error(std::size_t position, const std::string& /*token*/,
                                 const Json::exception& failure) {
  constexpr int numberOverflow = 406;
  if (failure.id != numberOverflow) return fail(Fault::notJson, notJsonAt(position));
  return fail(Fault::outOfRange, "number out of range at byte " + std::to_string(position));
}

bool SnapshotReader::scalar(const Scalar& value) {
  if (ignoredLevels_ > 0) return true;
  switch (place()) {
    case Place::outside:
      return fail(Fault::wrongType, "the document is not an object");
    case Place::children:
      return failAt("children", Fault::wrongType, "holds something that is not an object");
    case Place::snapshot:
      return store<Snapshot>(snapshotKeys, snapshotState_, snapshot_, value);
    case Place::list:
      return failAt(list_->name, Fault::wrongType, "holds something that is not an object");
    case Place::item:
      return store<Snapshot>(list_->keys, itemState_, snapshot_, value);
    case Place::node:
      return store<Node>(nodeKeys, levels_.back().keys, levels_.back().node, value);
  }
  return false;
}

bool SnapshotReader::openNode(std::size_t index) {
  if (levels_.size() == Node::maximumDepth) return fail(Fault::tooDeep, "the tree is too deep");
  levels_.push_back({.node = {}, .keys = {}, .index = index});
  return true;
}

bool SnapshotReader::closeNode() {
  Level& level = levels_.back();
  if (!isComplete<Node>(nodeKeys, level.keys)) return false;
  if (levels_.size() == 1) {
    snapshot_.root = std::move(level.node);
  } else {
    closed_.push_back(std::move(level.node));
  }
  levels_.pop_back();
  return true;
}

bool SnapshotReader::openList() {
  if (snapshotState_.current == KeyState::unknown) return openIgnored();
  const auto* const list = std::ranges::find(SnapshotKeys::lists, snapshotKeys[snapshotState_.current].name,
                                             &SnapshotKeys::List::name);
  if (list == std::end(SnapshotKeys::lists)) return scalar(nullptr);
  list_ = list;
  return true;
}

bool SnapshotReader::openItem() {
  list_->append(snapshot_);
  itemState_ = {};
  return isInItem_ = true;
}

bool SnapshotReader::openIgnored() {
  if (++ignoredLevels_ > Node::maximumDepth) return fail(Fault::tooDeep, "a value is nested too deeply");
  return true;
}

template <class Record>
bool SnapshotReader::enter(std::span<const Key<Record>> keys, KeyState& state, std::string_view name) {
  const auto found = std::ranges::find(keys, name, &Key<Record>::name);
  state.current = KeyState::unknown;
  if (found == keys.end()) return true;
  state.current = static_cast<std::size_t>(found - keys.begin());
  const std::uint32_t bit = 1U << state.current;
  if ((state.seen & bit) != 0) return failAt(name, Fault::duplicateKey, "is given twice");
  state.seen |= bit;
  return true;
}

template <class Record>
bool SnapshotReader::store(std::span<const Key<Record>> keys, const KeyState& state, Record& record,
                           const Scalar& value) {
  if (state.current == KeyState::unknown) return true;
  const Key<Record>& key = keys[state.current];
  const Complaint complaint = key.take(record, value);
  if (complaint.empty()) return true;
  return failAt(key.name, complaint == outOfRange ? Fault::outOfRange : Fault::wrongType, complaint);
}

template <class Record>
bool SnapshotReader::isComplete(std::span<const Key<Record>> keys, const KeyState& state) {
  for (std::size_t i = 0; i < keys.size(); ++i) {
    if (keys[i].isRequired && (state.seen >> i & 1U) == 0)
      return failAt(keys[i].name, Fault::missingKey, "is missing");
  }
  return true;
}

// The path of the current node for a message, such as "root/Movies/#2". A node whose name was not read yet is
// shown by its number. Shows only the innermost levels, and only the beginning of long names.
std::string SnapshotReader::placeName() const {
  constexpr std::size_t namedLevels = 5;
  constexpr std::size_t namedBytes = 80;
  if (levels_.empty()) return list_ != nullptr ? "snapshot/" + std::string{list_->name} : "snapshot";
  std::string place = "root";
  std::size_t from = 1;
  if (levels_.size() > namedLevels + 1) {
    place += "/\u2026";
    from = levels_.size() - namedLevels;
  }
  for (const Level& level : levels_ | std::views::drop(from)) {
    const std::string& name = level.node.name;
    std::size_t length = std::min(name.size(), namedBytes);
    while (length < name.size() && length > 0 && (static_cast<unsigned char>(name[length]) & 0xc0U) == 0x80)
      --length;
    place += '/';
    place += name.empty() ? "#" + std::to_string(level.index) : name.substr(0, length);
  }
  return place;
}

bool SnapshotReader::failAt(std::string_view key, Fault fault, std::string_view what) {
  std::string message = placeName();
  message += ": \"";
  message += key;
  message += "\" ";
  message += what;
  return fail(fault, message);
}

bool SnapshotReader::fail(Fault fault, std::string_view what) {
  error_ = decodeError(fault, what);
  return false;
}

}  // namespace

std::expected<Snapshot, Error> SnapshotCodec::decode(std::string_view document) {
  try {
    SnapshotReader reader;
    // The parser would stop at a zero byte and ignore the rest.
    const std::size_t zero = document.find('\0');
    if (zero != std::string_view::npos) return std::unexpected(decodeError(Fault::notJson, notJsonAt(zero)));
    if (!Json::sax_parse(document, &reader)) return std::unexpected(std::move(reader.error()));
    return std::move(reader.snapshot());
  } catch (const std::exception& failure) {
    return std::unexpected(decodeError(Fault::outOfMemory, failure.what()));
  }
}

}  // namespace spacemint
