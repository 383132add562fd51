#include "core/wording/PictureText.h"

#include "core/base/ByteFormat.h"
#include "core/base/Isolate.h"
#include "core/base/TextList.h"
#include "core/base/Translation.h"

#include <cmath>
#include <cstdlib>
#include <limits>

namespace spacemint {

namespace {

std::string absolute(Bytes delta, const std::string& locale) {
  return ByteFormat::string(std::abs(std::max(delta, -std::numeric_limits<Bytes>::max())), locale);
}

bool isShown(Bytes delta) {
  return delta >= PictureText::smallestChange || delta <= -PictureText::smallestChange;
}

std::string cameText(const Tile& tile, const std::string& locale) {
  const std::string change = PictureText::change(tile.growth(), locale);
  return change.empty() || !tile.change->isNew ? change : PictureText::isNew();
}

}  // namespace

std::string PictureText::percent(Bytes part, Bytes whole) {
  const double share = whole > 0 ? 100 * static_cast<double>(part) / static_cast<double>(whole) : 0;
  if (share > 0 && share < 1) return i18nc("a share", "under 1 %");
  return i18nc("a share", "{number} %", {{"number", numberText(std::lround(share))}});
}

std::string PictureText::growth() {
  return i18nc("colours of a map", "Growth");
}

std::string PictureText::age() {
  return i18nc("colours of a map", "Age");
}

std::string PictureText::shrank() {
  return i18nc("the legend of a map: what became smaller", "shrunk");
}

std::string PictureText::isNew() {
  return i18nc("a file that was not there before", "new");
}

std::string PictureText::nothingCame() {
  return i18n("After the next scan, colour shows what came.");
}

std::string PictureText::lineBegins() {
  return i18n("The line begins with the next scan.");
}

std::string PictureText::now() {
  return i18nc("the end of a line over time", "now");
}

std::vector<std::string> PictureText::ages() {
  return {i18nc("last changed", "this month"), i18nc("last changed", "this year"),
          i18nc("last changed", "1 to 3 years"), i18nc("last changed", "older")};
}

std::string PictureText::change(Bytes delta, const std::string& locale) {
  if (!isShown(delta)) return "";
  return (delta > 0 ? "+" : "\u2212") + absolute(delta, locale);
}

std::string PictureText::partName(const Tile& tile) {
  switch (tile.kind) {
    case Tile::Kind::small:
      return tile.count > 0
                 ? i18nc("small items of a folder", "{number} more", {{"number", numberText(tile.count)}})
                 : i18nc("of a folder", "small items");
    case Tile::Kind::files:
      return i18n("In files");
    case Tile::Kind::notInFiles:
      return i18n("Not in files");
    case Tile::Kind::free:
      return i18nc("space of a disk", "Free");
    case Tile::Kind::item:
    case Tile::Kind::frame:
    case Tile::Kind::folder:
      break;
  }
  return "";
}

std::string PictureText::about(const Tile& tile, Bytes folderSize, std::string_view folder,
                               const std::string& locale) {
  const std::string size = ByteFormat::string(tile.size, locale);
  const std::string part =
      i18n("{size} · {share} of {folder}",
           {{"size", size}, {"share", percent(tile.size, folderSize)}, {"folder", isolatedPath(folder)}});
  return facts({folder.empty() ? size : part, cameText(tile, locale)});
}

std::string PictureText::spoken(const Tile& tile, Bytes folderSize, const std::string& locale) {
  const std::string size = ByteFormat::string(tile.size, locale);
  const std::string share = percent(tile.size, folderSize);
  const Bytes growth = tile.growth();
  if (!isShown(growth)) return i18n("{size}, {share}", {{"size", size}, {"share", share}});
  const std::string change = absolute(growth, locale);
  return growth > 0 ? i18n("{size}, {share}, grew by {change}",
                           {{"size", size}, {"share", share}, {"change", change}})
                    : i18n("{size}, {share}, shrank by {change}",
                           {{"size", size}, {"share", share}, {"change", change}});
}

std::string PictureText::inTile(const Tile& tile, const std::string& locale) {
  return facts({ByteFormat::string(tile.size, locale), cameText(tile, locale)});
}

std::string PictureText::momentHelp(std::string_view moment, Bytes free, bool isChosen,
                                    const std::string& locale) {
  const std::string bytes = ByteFormat::string(free, locale);
  return isChosen
             ? i18n("{date} · {size} free", {{"date", moment}, {"size", bytes}})
             : i18n("{date} · {size} free\nClick to compare with it", {{"date", moment}, {"size", bytes}});
}

std::string PictureText::cameSince(std::string_view date) {
  return i18n("Came since {date}", {{"date", date}});
}

std::string PictureText::mapOf(std::string_view folder) {
  return i18n("Map of {folder}", {{"folder", folder}});
}

std::string PictureText::summary(const Node& folder, const std::string& locale) {
  const auto& children = folder.children;
  const std::string size = ByteFormat::string(folder.size, locale);
  if (children.empty()) return i18n("{size} in small items.", {{"size", size}});
  const std::string first = ByteFormat::string(children[0].size, locale);
  if (children.size() == 1)
    return i18n("{size} in one item: {name}, {first}.",
                {{"size", size}, {"name", isolatedPath(children[0].name)}, {"first", first}});
  return i18n("{size} in {number} items; the largest are {name}, {first}, and {next}, {second}.",
              {{"size", size},
               {"number", groupedNumber(static_cast<std::int64_t>(children.size()), locale)},
               {"name", isolatedPath(children[0].name)},
               {"first", first},
               {"next", isolatedPath(children[1].name)},
               {"second", ByteFormat::string(children[1].size, locale)}});
}

}  // namespace spacemint
