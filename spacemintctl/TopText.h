#pragma once

#include "core/analysis/GrowthWatch.h"
#include "spacemintctl/Answer.h"

#include <string>

namespace spacemint::ctl {

/// The column by which `top` orders its lines.
enum class TopOrder : std::uint8_t { now, minute, tenMinutes };

/// What `top` shows at one time.
struct TopView {
  const GrowthWatch& watch;
  std::string root;
  TopOrder order = TopOrder::minute;
  bool isHeld = false;
};

/// The page for a terminal: the volume, and a table of what grows.
std::string topPage(const TopView& view, const Wording& wording);
/// A line of text for each place that grows; empty if nothing does.
std::string topLines(const TopView& view, Date date, const Wording& wording);
/// One JSON object and a line feed.
std::string topJson(const TopView& view, Date date);

}  // namespace spacemint::ctl
