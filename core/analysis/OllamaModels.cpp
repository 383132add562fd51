#include "core/analysis/OllamaModels.h"

#include "core/analysis/SizeText.h"
#include "core/base/AsciiText.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <ranges>

namespace spacemint::DevTools {

namespace {

// Two or more spaces separate the columns; a single space belongs to a column's text.
std::vector<std::string> columns(std::string_view line) {
  constexpr std::string_view gap = "  ";
  std::vector<std::string> pieces;
  while (!line.empty()) {
    const std::size_t end = std::min(line.find(gap), line.size());
    if (const auto piece = trimmed(line.substr(0, end)); !piece.empty()) pieces.emplace_back(piece);
    line.remove_prefix(std::min(end + gap.size(), line.size()));
  }
  return pieces;
}

std::optional<OllamaModel> model(std::string_view line) {
  const auto pieces = columns(line);
  if (pieces.size() < 4) return std::nullopt;
  const auto size = parseSize(pieces[2]);
  if (!size || *size < 0) return std::nullopt;
  return OllamaModel{.name = pieces[0], .size = *size, .modified = pieces[3]};
}

}  // namespace

std::vector<OllamaModel> parseOllamaList(std::string_view text) {
  const auto rows = lines(text);
  std::vector<OllamaModel> models;
  for (const std::string_view row : rows | std::views::drop(1)) {  // the first one is the header
    if (auto found = model(row)) models.push_back(std::move(*found));
  }
  std::ranges::stable_sort(models, std::greater{}, &OllamaModel::size);
  return models;
}

}  // namespace spacemint::DevTools
