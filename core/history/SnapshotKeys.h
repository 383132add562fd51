// The keys of a stored scan, for SnapshotCodec::decode: one table for each kind of object, with a function
// that stores each value.

#pragma once

#include "core/base/DateSeconds.h"
#include "core/history/SnapshotCodec.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace spacemint::SnapshotKeys {

// A number with a fraction or an exponent, or a whole number that does not fit 64 bits.
struct Real {
  double value;
  bool isWhole;
};

using Scalar = std::variant<std::nullptr_t, bool, std::int64_t, std::uint64_t, Real, const std::string*>;

// What is wrong with a value; empty if the value was stored.
using Complaint = std::string_view;
inline constexpr Complaint fine{};
inline constexpr Complaint outOfRange = "is out of range";
inline constexpr Complaint notAnInteger = "is not an integer";
inline constexpr Complaint notANumber = "is not a number";
inline constexpr Complaint notABoolean = "is not a boolean";
inline constexpr Complaint notAString = "is not a string";
inline constexpr Complaint notAnObject = "is not an object";
inline constexpr Complaint notAnArray = "is not an array";

template <class Integer>
Complaint takeInteger(const Scalar& value, Integer& target) {
  const auto fitting = [&](auto number) {
    if (!std::in_range<Integer>(number)) return outOfRange;
    target = static_cast<Integer>(number);
    return fine;
  };
  if (const auto* natural = std::get_if<std::uint64_t>(&value)) return fitting(*natural);
  if (const auto* integer = std::get_if<std::int64_t>(&value)) return fitting(*integer);
  const auto* real = std::get_if<Real>(&value);
  return real != nullptr && real->isWhole ? outOfRange : notAnInteger;
}

inline std::optional<double> number(const Scalar& value) {
  if (const auto* natural = std::get_if<std::uint64_t>(&value)) return static_cast<double>(*natural);
  if (const auto* integer = std::get_if<std::int64_t>(&value)) return static_cast<double>(*integer);
  if (const auto* real = std::get_if<Real>(&value)) return real->value;
  return std::nullopt;
}

inline Complaint take(const Scalar& value, std::int64_t& target) {
  return takeInteger(value, target);
}
inline Complaint take(const Scalar& value, std::uint64_t& target) {
  return takeInteger(value, target);
}

// A count of bytes or files. A negative count becomes 0, so that the difference of two counts fits 64 bits.
inline Complaint takeCount(const Scalar& value, std::int64_t& target) {
  const Complaint complaint = takeInteger(value, target);
  target = std::max<std::int64_t>(target, 0);
  return complaint;
}

inline Complaint take(const Scalar& value, bool& target) {
  const auto* boolean = std::get_if<bool>(&value);
  if (boolean == nullptr) return notABoolean;
  target = *boolean;
  return fine;
}

inline Complaint take(const Scalar& value, std::string& target) {
  const auto* text = std::get_if<const std::string*>(&value);
  if (text == nullptr) return notAString;
  target = **text;  // copy: moving would keep the larger capacity of the parser's buffer
  return fine;
}

inline Complaint take(const Scalar& value, Seconds& target) {
  const auto seconds = number(value);
  if (!seconds) return notANumber;
  target = Seconds{*seconds};
  return fine;
}

inline Complaint take(const Scalar& value, Date& target) {
  const auto seconds = number(value);
  if (!seconds) return notANumber;
  const auto date = dateAfter(SnapshotCodec::epoch, *seconds);
  if (!date) return outOfRange;
  target = *date;
  return fine;
}

// A file can have any time stamp. A time outside the range of Date becomes the nearest Date, as in a scan.
inline Complaint takeModified(const Scalar& value, Date& target) {
  const auto seconds = number(value);
  if (!seconds) return notANumber;
  constexpr double farthest = 1e13;
  const auto nearest = static_cast<std::int64_t>(std::clamp(*seconds, -farthest, farthest));
  target = dateAfter(std::chrono::seconds{0}, *seconds).value_or(dateFromUnixSeconds(nearest));
  return fine;
}

// A key of an object. `take` stores a value in the record, or returns what is wrong with the value.
template <class Record>
struct Key {
  std::string_view name;
  bool isRequired = false;
  Complaint (*take)(Record&, const Scalar&);
};

inline Unread& unread(Snapshot& snapshot) {
  return snapshot.coverage.unread;
}

inline constexpr Key<Snapshot> snapshotKeys[]{
    {"date", true, [](Snapshot& s, const Scalar& v) { return take(v, s.date); }},
    {"duration", true, [](Snapshot& s, const Scalar& v) { return take(v, s.duration); }},
    {"root", true, [](Snapshot&, const Scalar&) { return notAnObject; }},
    {"fileCount", true, [](Snapshot& s, const Scalar& v) { return takeCount(v, s.fileCount); }},
    {"volumeFree", true, [](Snapshot& s, const Scalar& v) { return takeCount(v, s.volumeFree); }},
    {"volumeTotal", true, [](Snapshot& s, const Scalar& v) { return takeCount(v, s.volumeTotal); }},
    {"minNodeSize", true, [](Snapshot& s, const Scalar& v) { return takeCount(v, s.minNodeSize); }},
    {"eventID", false, [](Snapshot& s, const Scalar& v) { return take(v, s.eventID.emplace()); }},
    {"fullScanDate", false, [](Snapshot& s, const Scalar& v) { return take(v, s.fullScanDate.emplace()); }},
    {"format", false, [](Snapshot& s, const Scalar& v) { return take(v, s.format.emplace()); }},
    {"places", false, [](Snapshot&, const Scalar&) { return notAnArray; }},
    {"leftOut", false, [](Snapshot&, const Scalar&) { return notAnArray; }},
    {"unread", false, [](Snapshot&, const Scalar&) { return notAnArray; }},
    {"unreadFolders", false, [](Snapshot& s, const Scalar& v) { return takeCount(v, unread(s).folders); }},
    {"unreadEntries", false, [](Snapshot& s, const Scalar& v) { return takeCount(v, unread(s).entries); }},
    {"excludes", false, [](Snapshot&, const Scalar&) { return notAnArray; }},
};
inline constexpr std::size_t rootKey = 2;

// The keys of the objects in the arrays of a snapshot. Each stores its value in the last element.
inline CoveredPlace& lastPlace(Snapshot& snapshot) {
  return snapshot.coverage.places.back();
}
inline LeftOut& lastLeftOut(Snapshot& snapshot) {
  return snapshot.coverage.leftOut.back();
}

// In the order of `LeftOut::Kind`.
inline constexpr std::string_view leftOutKinds[]{"volume", "snapshot", "removable", "remote", "excluded"};

// A kind of a later version counts as a volume.
inline Complaint takeKind(const Scalar& value, LeftOut::Kind& target) {
  std::string name;
  const Complaint complaint = take(value, name);
  const auto* const found = std::ranges::find(leftOutKinds, name);
  if (found != std::end(leftOutKinds)) target = static_cast<LeftOut::Kind>(found - leftOutKinds);
  return complaint;
}

inline constexpr Key<Snapshot> placeKeys[]{
    {"mountPoint", true, [](Snapshot& s, const Scalar& v) { return take(v, lastPlace(s).place.mountPoint); }},
    {"root", true, [](Snapshot& s, const Scalar& v) { return take(v, lastPlace(s).place.root); }},
    {"fileSystem", true, [](Snapshot& s, const Scalar& v) { return take(v, lastPlace(s).place.fileSystem); }},
    {"pool", true, [](Snapshot& s, const Scalar& v) { return take(v, lastPlace(s).place.pool); }},
    {"size", true, [](Snapshot& s, const Scalar& v) { return takeCount(v, lastPlace(s).size); }},
    {"folderBytes", true,
     [](Snapshot& s, const Scalar& v) { return takeCount(v, lastPlace(s).folderBytes); }},
    {"fileCount", true, [](Snapshot& s, const Scalar& v) { return takeCount(v, lastPlace(s).fileCount); }},
    {"volumeTotal", true,
     [](Snapshot& s, const Scalar& v) { return takeCount(v, lastPlace(s).volumeTotal); }},
    {"volumeFree", true, [](Snapshot& s, const Scalar& v) { return takeCount(v, lastPlace(s).volumeFree); }},
    {"inlineBytes", false,
     [](Snapshot& s, const Scalar& v) { return takeCount(v, lastPlace(s).inlineBytes); }},
};
inline constexpr Key<Snapshot> leftOutKeys[]{
    {"path", true, [](Snapshot& s, const Scalar& v) { return take(v, lastLeftOut(s).path); }},
    {"kind", true, [](Snapshot& s, const Scalar& v) { return takeKind(v, lastLeftOut(s).kind); }},
    {"created", false,
     [](Snapshot& s, const Scalar& v) { return takeModified(v, lastLeftOut(s).created.emplace()); }},
    {"size", false, [](Snapshot& s, const Scalar& v) { return takeCount(v, lastLeftOut(s).size.emplace()); }},
};
inline constexpr Key<Snapshot> unreadKeys[]{
    {"path", true, [](Snapshot& s, const Scalar& v) { return take(v, unread(s).paths.back()); }},
};
inline constexpr Key<Snapshot> excludeKeys[]{
    {"pattern", true, [](Snapshot& s, const Scalar& v) { return take(v, s.coverage.excludes.back()); }},
};

// An array of objects in a snapshot.
struct List {
  std::string_view name;
  void (*append)(Snapshot&);
  std::span<const Key<Snapshot>> keys;
};
inline constexpr List lists[]{
    {"places", [](Snapshot& s) { s.coverage.places.emplace_back(); }, placeKeys},
    {"leftOut", [](Snapshot& s) { s.coverage.leftOut.emplace_back(); }, leftOutKeys},
    {"unread", [](Snapshot& s) { unread(s).paths.emplace_back(); }, unreadKeys},
    {"excludes", [](Snapshot& s) { s.coverage.excludes.emplace_back(); }, excludeKeys},
};

inline constexpr Key<Node> nodeKeys[]{
    {"name", true, [](Node& n, const Scalar& v) { return take(v, n.name); }},
    {"size", true, [](Node& n, const Scalar& v) { return takeCount(v, n.size); }},
    {"isDirectory", false, [](Node& n, const Scalar& v) { return take(v, n.isDirectory); }},
    {"modified", false, [](Node& n, const Scalar& v) { return takeModified(v, n.modified.emplace()); }},
    {"children", false, [](Node&, const Scalar&) { return notAnArray; }},
    {"fileCount", false, [](Node& n, const Scalar& v) { return takeCount(v, n.fileCount); }},
    {"isWorktree", false, [](Node& n, const Scalar& v) { return take(v, n.isWorktree); }},
};
inline constexpr std::size_t childrenKey = 4;

}  // namespace spacemint::SnapshotKeys
