#pragma once

#include "core/base/Bytes.h"

#include <string>
#include <string_view>
#include <vector>

namespace spacemint::DevTools {

/// A model that Ollama keeps.
struct OllamaModel {
  /// With its tag.
  std::string name;
  Bytes size = 0;
  /// How long ago it was changed, in Ollama's words.
  std::string modified;

  const std::string& id() const { return name; }
  bool operator==(const OllamaModel&) const = default;
};

/// The output of `ollama list`, largest first. Lines that are not understood are skipped.
std::vector<OllamaModel> parseOllamaList(std::string_view text);

}  // namespace spacemint::DevTools
