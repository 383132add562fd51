#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace spacemint {

/// The words as one text in the language of the sentences: "a, b and c". Any thread.
std::string listed(const std::vector<std::string>& words);

/// The same with commas only: "a, b, c".
std::string enumerated(const std::vector<std::string>& words);

/// Whole sentences, one after the other as the language writes them; empty ones are left out. Any thread.
std::string sentences(const std::vector<std::string>& parts);

/// Short facts on one line: "2 days ago · ~/Videos"; empty ones are left out. Any thread.
std::string facts(const std::vector<std::string>& parts);

}  // namespace spacemint
