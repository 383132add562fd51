#include "core/analysis/ToolState.h"

#include "core/base/Translation.h"

#include <ranges>

namespace spacemint::DevTools {

std::string lastLine(std::string_view text) {
  const auto all = lines(text);
  for (const std::string_view line : all | std::views::reverse) {
    if (const auto words = trimmed(line); !words.empty()) return std::string{words};
  }
  return i18n("Unknown error");
}

}  // namespace spacemint::DevTools
