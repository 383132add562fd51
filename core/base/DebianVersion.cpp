#include "core/base/DebianVersion.h"

#include <algorithm>

namespace spacemint {

namespace {

struct Parts {
  std::string_view epoch;
  std::string_view version;
  std::string_view revision;
};

Parts partsOf(std::string_view text) {
  Parts parts{.version = text};
  if (const std::size_t colon = text.find(':'); colon != std::string_view::npos) {
    parts.epoch = text.substr(0, colon);
    parts.version.remove_prefix(colon + 1);
  }
  if (const std::size_t hyphen = parts.version.rfind('-'); hyphen != std::string_view::npos) {
    parts.revision = parts.version.substr(hyphen + 1);
    parts.version = parts.version.substr(0, hyphen);
  }
  return parts;
}

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

// Removes the longest run of digits (or of other characters) from the front of `text` and returns the run.
std::string_view takeRun(std::string_view& text, bool ofDigits) {
  const auto end = std::ranges::find_if(text, [&](char c) { return isDigit(c) != ofDigits; });
  const std::string_view run{text.begin(), end};
  text.remove_prefix(run.size());
  return run;
}

// The rank of a non-digit in the order of versions. The end of a run has rank 0.
int rankOf(char c) {
  constexpr int behindAllLetters = 256;
  const bool isLetter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
  if (c == '~') return -1;
  return static_cast<unsigned char>(c) + (isLetter ? 0 : behindAllLetters);
}

std::weak_ordering textOrder(std::string_view a, std::string_view b) {
  for (std::size_t i = 0; i < std::max(a.size(), b.size()); ++i) {
    const int rankA = i < a.size() ? rankOf(a[i]) : 0;
    const int rankB = i < b.size() ? rankOf(b[i]) : 0;
    if (rankA != rankB) return rankA <=> rankB;
  }
  return std::weak_ordering::equivalent;
}

std::weak_ordering numberOrder(std::string_view a, std::string_view b) {
  a.remove_prefix(std::min(a.find_first_not_of('0'), a.size()));
  b.remove_prefix(std::min(b.find_first_not_of('0'), b.size()));
  return a.size() != b.size() ? a.size() <=> b.size() : a <=> b;
}

std::weak_ordering partOrder(std::string_view a, std::string_view b) {
  while (!a.empty() || !b.empty()) {
    if (const auto order = textOrder(takeRun(a, false), takeRun(b, false)); order != 0) return order;
    if (const auto order = numberOrder(takeRun(a, true), takeRun(b, true)); order != 0) return order;
  }
  return std::weak_ordering::equivalent;
}

}  // namespace

std::weak_ordering debianVersionOrder(std::string_view a, std::string_view b) {
  const Parts first = partsOf(a);
  const Parts second = partsOf(b);
  if (const auto order = partOrder(first.epoch, second.epoch); order != 0) return order;
  if (const auto order = partOrder(first.version, second.version); order != 0) return order;
  return partOrder(first.revision, second.revision);
}

}  // namespace spacemint
