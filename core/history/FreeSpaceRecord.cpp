#include "core/history/FreeSpaceRecord.h"

#include "core/host/AtomicFile.h"
#include "core/tree/Paths.h"

#include <algorithm>
#include <array>
#include <concepts>
#include <limits>
#include <optional>
#include <ranges>
#include <string_view>

namespace spacemint {

namespace {

constexpr std::size_t slotCount = 512;
constexpr std::size_t slotSize = 32;
constexpr std::size_t fileSize = slotCount * slotSize;
// An hourly count never comes near this number, so a larger one is damage.
constexpr std::uint32_t largestNumber = std::numeric_limits<std::uint32_t>::max() / 2;

struct Slot {
  std::uint32_t number = 0;
  std::int64_t seconds = 0;
  Bytes free = 0;
  Bytes total = 0;
};

template <std::integral Number>
void append(std::string& bytes, Number number) {
  const auto bits = static_cast<std::make_unsigned_t<Number>>(number);
  for (std::size_t i = 0; i < sizeof bits; ++i) bytes += static_cast<char>((bits >> (8 * i)) & 0xffU);
}

template <std::integral Number>
Number take(std::string_view& bytes) {
  std::make_unsigned_t<Number> bits = 0;
  for (std::size_t i = 0; i < sizeof bits; ++i)
    bits |= static_cast<decltype(bits)>(static_cast<unsigned char>(bytes[i])) << (8 * i);
  bytes.remove_prefix(sizeof bits);
  return static_cast<Number>(bits);
}

// CRC-32C (the Castagnoli polynomial, reflected).
std::uint32_t checksum(std::string_view bytes) {
  std::uint32_t crc = ~std::uint32_t{0};
  for (const char byte : bytes) {
    crc ^= static_cast<unsigned char>(byte);
    for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1U) ^ ((crc & 1U) != 0 ? 0x82f6'3b78U : 0U);
  }
  return ~crc;
}

std::string encoded(const Slot& slot) {
  std::string number;
  append(number, slot.number);
  std::string values;
  append(values, slot.seconds);
  append(values, slot.free);
  append(values, slot.total);
  std::string sum;
  append(sum, checksum(number + values));
  return number + sum + values;
}

// Absent for an empty or damaged slot, and for one at the wrong place.
std::optional<Slot> decoded(std::string_view bytes, std::size_t index) {
  const std::string_view number = bytes.substr(0, 4);
  const std::string_view values = bytes.substr(8);
  const std::uint32_t sum = checksum(std::string{number}.append(values));
  Slot slot{.number = take<std::uint32_t>(bytes)};
  if (take<std::uint32_t>(bytes) != sum) return std::nullopt;
  slot.seconds = take<std::int64_t>(bytes);
  slot.free = take<Bytes>(bytes);
  slot.total = take<Bytes>(bytes);
  const bool isSane = slot.number <= largestNumber && slot.free >= 0 && slot.total >= 0;
  return isSane && slot.number % slotCount == index ? std::optional{slot} : std::nullopt;
}

// The readable slots, newest first.
std::vector<Slot> slotsOf(std::string_view file) {
  std::vector<Slot> slots;
  for (std::size_t index = 0; index < slotCount && (index + 1) * slotSize <= file.size(); ++index) {
    if (const auto slot = decoded(file.substr(index * slotSize, slotSize), index)) slots.push_back(*slot);
  }
  std::ranges::sort(slots, std::greater{}, &Slot::number);
  return slots;
}

std::string wholeFile(const std::vector<Slot>& slots) {
  std::string file(fileSize, '\0');
  for (const Slot& slot : slots) file.replace(slot.number % slotCount * slotSize, slotSize, encoded(slot));
  return file;
}

auto hourOf(Date date) {
  return std::chrono::floor<std::chrono::hours>(date);
}

}  // namespace

FreeSpaceRecord FreeSpaceRecord::ofVolume(const std::string& stateFolder, const std::string& mountPoint) {
  return {.path = Paths::join(stateFolder, "spacemint/free-space/" + Paths::hash(mountPoint))};
}

std::vector<FreeSpaceReading> FreeSpaceRecord::readings(Date now) const {
  const auto file = readFile(path, fileSize);
  std::vector<FreeSpaceReading> readings;
  if (!file) return readings;
  Date next = Date::max();
  for (const Slot& slot : slotsOf(*file)) {
    const Date date = dateFromUnixSeconds(slot.seconds);
    if (date >= next) continue;
    next = date;
    if (date <= now && timeBetween(date, now) <= kept)
      readings.push_back({.date = date, .free = slot.free, .total = slot.total});
  }
  std::ranges::reverse(readings);
  return readings;
}

std::expected<void, Error> FreeSpaceRecord::add(const FreeSpaceReading& reading) const {
  const std::string file = readFile(path, fileSize).value_or("");
  std::vector<Slot> slots = slotsOf(file);
  const bool isFirst = slots.empty();
  if (!isFirst && hourOf(dateFromUnixSeconds(slots.front().seconds)) == hourOf(reading.date)) return {};
  const Slot slot{
      .number = isFirst ? 0 : slots.front().number + 1,
      .seconds = std::chrono::floor<std::chrono::seconds>(reading.date).time_since_epoch().count(),
      .free = std::max<Bytes>(reading.free, 0),
      .total = std::max<Bytes>(reading.total, 0)};
  if (file.size() == fileSize) return overwritePart(path, slot.number % slotCount * slotSize, encoded(slot));
  if (auto made = createPrivateFolders(Paths::parent(path)); !made) return made;
  slots.push_back(slot);
  return writeFileAtomically(path, wholeFile(slots));
}

}  // namespace spacemint
