#pragma once

#include "core/base/Bytes.h"

#include <string>
#include <string_view>
#include <vector>

namespace spacemint::DevTools {

/// A model in Ollama's store.
struct OllamaModel {
  /// The name with the tag, such as "llama3:8b".
  std::string name;
  Bytes size = 0;
  /// The age in Ollama's words, such as "3 weeks ago".
  std::string modified;

  const std::string& id() const { return name; }
  bool operator==(const OllamaModel&) const = default;
};

/// Parses the output of `ollama list`; largest model first. Lines that cannot be parsed are skipped.
std::vector<OllamaModel> parseOllamaList(std::string_view text);

}  // namespace spacemint::DevTools
