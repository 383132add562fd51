#include "Spacemint/shell/StatusText.h"

#include "core/base/ByteFormat.h"

namespace spacemint {

StatusText statusText(const StatusFacts& facts) {
  if (!facts.volume) return {};
  const std::string free = ByteFormat::string(facts.volume->free, facts.locale);
  const bool isShown = facts.showsFreeSpace || facts.level != SpaceLevel::ok;
  return {.title = isShown ? " " + free : "",
          .toolTip = free + " free of " + ByteFormat::string(facts.volume->total, facts.locale)};
}

std::optional<Bytes> badgeOf(const StatusFacts& facts) {
  if (facts.level == SpaceLevel::ok || !facts.volume) return std::nullopt;
  return facts.volume->free;
}

}  // namespace spacemint
