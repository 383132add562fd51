#pragma once

#include "Spacemint/views/Explorer.h"
#include "core/host/DefaultsStore.h"

#include <optional>
#include <string>

namespace spacemint {

/// What was open in the window, for the next time that it opens.
struct WindowMemory {
  Tab tab = Tab::overview;
  /// The path of the open folder; absent for the root of the scan.
  std::optional<std::string> folder = {};
  Explorer::Colouring colouring = Explorer::Colouring::Growth;
  /// The width of the list beside the map, in pixels; 0 if the person never dragged it.
  int listWidth = 0;

  bool operator==(const WindowMemory&) const = default;
};

/// Absent if nothing is stored, or nothing that can be read.
std::optional<WindowMemory> storedMemory(const DefaultsStore& defaults);

/// Stores it, if it is new. If the store cannot be written, only the memory is lost.
void keepMemory(const WindowMemory& memory, DefaultsStore& defaults);

}  // namespace spacemint
