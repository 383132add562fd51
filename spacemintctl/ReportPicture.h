#pragma once

#include "core/analysis/ChangeTree.h"
#include "core/tree/Snapshot.h"

#include <string>
#include <string_view>

namespace spacemint::ctl {

/// A colour of the picture in the light and the dark appearance: as in the window, where the names are those
/// of ui_kit/Colours.h.
struct PictureColour {
  std::string_view name;
  std::string_view light;
  std::string_view dark;
};
inline constexpr PictureColour pictureColours[] = {
    {"canvas", "faf9f6", "1c1b1a"},   {"ink", "1b1a19", "f3f1ec"},    {"secondary", "6f6a63", "a29d96"},
    {"block", "ddd8ce", "45413c"},    {"frame", "efece6", "2b2926"},  {"grown", "edaa66", "8a5322"},
    {"amberInk", "8a4b12", "f2b877"}, {"shrunk", "a9d1cb", "2c5752"}, {"teal", "2f5d5a", "6fb3ac"},
    {"well", "f4f2ee", "22201e"},     {"border", "e8e5df", "363330"}};

/// The map of the scan as a drawing for browsers (SVG), with what came and what went if there is something to
/// compare with. `changes` may be null; `legend` is the line below the map. Pure; any thread.
std::string pictureSvg(const Snapshot& scan, const ChangeTree* changes, std::string_view legend,
                       const std::string& locale);

}  // namespace spacemint::ctl
