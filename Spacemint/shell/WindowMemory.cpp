#include "Spacemint/shell/WindowMemory.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <tuple>

namespace spacemint {

namespace {

constexpr std::string_view memoryKey = "SpacemintMainWindowContent";
// In the order of `allTabs` and of Explorer::Colouring.
constexpr std::array<std::string_view, allTabs.size()> tabNames{"overview", "folders", "files", "developer"};
constexpr std::array<std::string_view, 2> colourNames{"growth", "age"};
constexpr int widestList = 10'000;

template <std::size_t n>
std::optional<std::size_t> placeOf(const std::string& name, const std::array<std::string_view, n>& names) {
  const auto found = std::ranges::find(names, name);
  if (found == names.end()) return std::nullopt;
  return static_cast<std::size_t>(found - names.begin());
}

DefaultsArray elementsOf(const WindowMemory& memory) {
  return {std::string{tabNames.at(static_cast<std::size_t>(memory.tab))}, memory.folder.value_or(""),
          std::string{colourNames.at(static_cast<std::size_t>(memory.colouring))},
          std::int64_t{memory.listWidth}};
}

std::optional<WindowMemory> memoryOf(const DefaultsArray& elements) {
  if (elements.size() != 4) return std::nullopt;
  const auto* tab = std::get_if<std::string>(&elements[0]);
  const auto* folder = std::get_if<std::string>(&elements[1]);
  const auto* colours = std::get_if<std::string>(&elements[2]);
  const auto* width = std::get_if<std::int64_t>(&elements[3]);
  if (tab == nullptr || folder == nullptr || colours == nullptr || width == nullptr) return std::nullopt;
  const auto tabPlace = placeOf(*tab, tabNames);
  const auto colourPlace = placeOf(*colours, colourNames);
  if (!tabPlace || !colourPlace) return std::nullopt;
  return WindowMemory{.tab = allTabs.at(*tabPlace),
                      .folder = folder->empty() ? std::nullopt : std::optional{*folder},
                      .colouring = static_cast<Explorer::Colouring>(*colourPlace),
                      .listWidth = static_cast<int>(std::clamp<std::int64_t>(*width, 0, widestList))};
}

}  // namespace

std::optional<WindowMemory> storedMemory(const DefaultsStore& defaults) {
  const auto value = defaults.value(memoryKey);
  const auto* elements = value ? std::get_if<DefaultsArray>(&*value) : nullptr;
  return elements != nullptr ? memoryOf(*elements) : std::nullopt;
}

void keepMemory(const WindowMemory& memory, DefaultsStore& defaults) {
  if (memory == storedMemory(defaults).value_or(WindowMemory{})) return;
  std::ignore = defaults.set(memoryKey, elementsOf(memory));
}

}  // namespace spacemint
