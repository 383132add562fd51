#pragma once

#include <string>
#include <string_view>

namespace spacemint {

/// Names and paths as parts of a sentence. Text with right-to-left letters is put between Unicode isolate
/// characters, so that the words and numbers around the text keep their order; other text stays as it is. A
/// formatting character in the name that would turn letters around, or end the isolation, becomes U+FFFD. Any
/// thread.

/// `name`, isolated if needed. The first strong letter decides the direction of the whole name.
std::string isolatedName(std::string_view name);
/// `path`, isolated if needed. The folders of the path are shown from left to right, whatever letters their
/// names contain.
std::string isolatedPath(std::string_view path);

}  // namespace spacemint
