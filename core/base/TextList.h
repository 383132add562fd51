#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace spacemint {

/// The words as one text in the language of the sentences: "a, b and c". Any thread.
std::string listed(const std::vector<std::string>& words);

/// The same with commas only: "a, b, c".
std::string enumerated(const std::vector<std::string>& words);

}  // namespace spacemint
