#pragma once

#include "core/base/Bytes.h"
#include "core/picture/FolderPicture.h"

#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

/// The words in and around the pictures of folders, shared by the application and spacemintctl. `locale` is
/// an ICU locale identifier. Pure; any thread.
namespace PictureText {

/// "Growth" and "Age": what the colours mean.
std::string growth();
std::string age();
std::string shrank();
std::string isNew();
std::string nothingCame();
std::string lineBegins();
std::string now();
/// The names of the ages in the order of their colours, newest first.
std::vector<std::string> ages();

/// The smallest change that is worth a figure: what is smaller has no place in a scan of its own.
inline constexpr Bytes smallestChange = 20'000'000;

/// "+6.2 GB" or "−300 MB"; empty for a change below `smallestChange`.
std::string change(Bytes delta, const std::string& locale);

/// "33 %", or "under 1 %".
std::string percent(Bytes part, Bytes whole);

/// The name of a part of a volume or of small items; empty for a tile with a node.
std::string partName(const Tile& tile);

/// "25 GB · 33 % of ann · +4.6 GB": the tile, and its share of the folder called `folder`. Without a folder
/// no share.
std::string about(const Tile& tile, Bytes folderSize, std::string_view folder, const std::string& locale);

/// "25 GB, 33 %, grew by 4.6 GB": the same for screen readers.
std::string spoken(const Tile& tile, Bytes folderSize, const std::string& locale);

/// "15.4 GB · +3.6 GB", the second line in a tile.
std::string inTile(const Tile& tile, const std::string& locale);

/// "Thu 19 Nov, 8:10 AM · 58.4 GB free", and on a second line, except for the chosen scan, "Click to compare
/// with it".
std::string momentHelp(std::string_view moment, Bytes free, bool isChosen, const std::string& locale);
/// "Came since Tue 24 Nov, 2:49 AM"
std::string cameSince(std::string_view date);
/// "Map of ann"
std::string mapOf(std::string_view folder);
/// "76.2 GB in 12 items; the largest are Videos, 28.4 GB, and vm, 25 GB."
std::string summary(const Node& folder, const std::string& locale);

}  // namespace PictureText

}  // namespace spacemint
