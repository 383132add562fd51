#include "spacemintctl/FreeSpaceText.h"

#include "core/base/ByteFormat.h"
#include "core/base/Translation.h"
#include "spacemintctl/Console.h"

#include <algorithm>
#include <array>
#include <map>
#include <ranges>
#include <string_view>

namespace spacemint::ctl {

namespace {

constexpr std::array<std::string_view, 8> bars{"▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};

struct Range {
  Bytes lowest = 0;
  Bytes highest = 0;
};

struct Day {
  std::vector<FreeSpaceReading> readings;
  std::array<std::string_view, 24> bars = [] {
    std::array<std::string_view, 24> empty;
    empty.fill(" ");
    return empty;
  }();
};

Range rangeOf(const std::vector<FreeSpaceReading>& readings) {
  const auto [low, high] = std::ranges::minmax(readings, {}, &FreeSpaceReading::free);
  return {.lowest = low.free, .highest = high.free};
}

std::string_view barFor(Bytes free, const Range& whole) {
  const double height = static_cast<double>(free - whole.lowest) /
                        static_cast<double>(std::max<Bytes>(whole.highest - whole.lowest, 1));
  return bars[std::min(static_cast<std::size_t>(height * bars.size()), bars.size() - 1)];
}

}  // namespace

std::string freeSpaceText(const std::vector<FreeSpaceReading>& readings, const std::string& locale) {
  if (readings.empty())
    return i18n("No free space is recorded yet; the application records it once an hour.") + "\n";
  const Range whole = rangeOf(readings);
  std::map<std::string, Day> days;
  for (const FreeSpaceReading& reading : readings) {
    const std::string time = localTime(reading.date);
    Day& day = days[time.substr(0, 10)];
    day.readings.push_back(reading);
    day.bars.at(static_cast<std::size_t>(std::stoi(time.substr(11, 2)))) = barFor(reading.free, whole);
  }
  const auto size = [&](Bytes bytes) { return ByteFormat::string(bytes, locale); };
  const std::string text = i18n("Free space, hour by hour, from {lowest} ({low}) to {highest} ({high})",
                                {{"lowest", size(whole.lowest)},
                                 {"low", bars.front()},
                                 {"highest", size(whole.highest)},
                                 {"high", bars.back()}}) +
                           "\n";
  Table table{0};
  for (const auto& [name, day] : days) {
    std::string line;
    for (const std::string_view bar : day.bars) line += bar;
    const Range range = rangeOf(day.readings);
    table.add({name, line, size(range.lowest), i18n("to {size}", {{"size", size(range.highest)}})});
  }
  return text + table.text();
}

}  // namespace spacemint::ctl
