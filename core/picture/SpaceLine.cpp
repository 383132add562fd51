#include "core/picture/SpaceLine.h"

#include <algorithm>

namespace spacemint {

namespace {

// The range of bytes that the height of the line stands for.
struct Scale {
  double low = 0;
  double high = 1;

  double heightOf(Bytes bytes) const {
    return 1 - std::clamp((static_cast<double>(bytes) - low) / (high - low), 0.0, 1.0);
  }
};

Scale scaleOf(const std::vector<SpacePoint>& points, Bytes total, std::optional<Bytes> level) {
  const auto [lowest, highest] = std::ranges::minmax_element(points, {}, &SpacePoint::free);
  double low = static_cast<double>(lowest->free);
  double high = static_cast<double>(highest->free);
  if (level) low = std::min(low, static_cast<double>(*level));
  const double range = std::max({high - low, static_cast<double>(total) * 0.05, 1.0});
  const double spare = (range - (high - low)) / 2;
  low -= spare + range * 0.12;
  high += spare + range * 0.10;
  return {low, high};
}

double shareOf(Date date, Date begin, Date end) {
  const auto whole = timeBetween(begin, end).count();
  if (whole <= 0) return 1;
  return std::clamp(static_cast<double>(timeBetween(begin, date).count()) / static_cast<double>(whole), 0.0,
                    1.0);
}

// The point of the line at that date, between its two nearest readings.
SpacePoint pointAt(Date date, const std::vector<SpacePoint>& points) {
  const auto after = std::ranges::lower_bound(points, date, {}, &SpacePoint::date);
  if (after == points.begin()) return points.front();
  if (after == points.end()) return points.back();
  const SpacePoint& left = *(after - 1);
  const double share = shareOf(date, left.date, after->date);
  const auto between = [share](double a, double b) { return a + (b - a) * share; };
  return {
      .date = date,
      .free = static_cast<Bytes>(between(static_cast<double>(left.free), static_cast<double>(after->free))),
      .x = between(left.x, after->x),
      .y = between(left.y, after->y)};
}

std::vector<SpacePoint> pointsOf(const SpaceLineQuestion& question) {
  std::vector<SpacePoint> points;
  const auto add = [&](const FreeSpaceReading& reading) {
    const bool isAfterGap =
        !points.empty() && timeBetween(points.back().date, reading.date) > SpaceLine::longestGap;
    points.push_back({.date = reading.date, .free = reading.free, .isAfterGap = isAfterGap});
  };
  for (const FreeSpaceReading& reading : question.readings) {
    if (reading.date < question.now.date) add(reading);
  }
  add(question.now);
  return points;
}

}  // namespace

SpaceLine spaceLine(const SpaceLineQuestion& question) {
  SpaceLine line{.points = pointsOf(question), .scans = {}, .level = {}};
  const Bytes lowest = std::ranges::min_element(line.points, {}, &SpacePoint::free)->free;
  const bool showsLevel = lowest / 4 < question.warningLevel;
  const auto level = showsLevel ? std::optional{question.warningLevel} : std::nullopt;
  const Scale scale = scaleOf(line.points, question.now.total, level);
  const Date begin = line.points.front().date;
  for (SpacePoint& point : line.points) {
    point.x = shareOf(point.date, begin, question.now.date);
    point.y = scale.heightOf(point.free);
  }
  // A single point is below the sentence that takes the place of the line.
  if (line.points.size() == 1) line.points.front().y = 0.85;
  if (level) line.level = scale.heightOf(*level);
  for (std::size_t i = 0; i < question.scans.size() && line.scans.size() < SpaceLine::mostScans; ++i) {
    const Date scan = question.scans[i];
    if (scan >= begin && scan <= question.now.date) line.scans.push_back({i, pointAt(scan, line.points)});
  }
  return line;
}

}  // namespace spacemint
