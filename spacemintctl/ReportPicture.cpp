#include "spacemintctl/ReportPicture.h"

#include "core/base/ByteFormat.h"
#include "core/base/Unicode.h"
#include "core/picture/FolderPicture.h"
#include "core/wording/PictureText.h"

#include <cstdio>

namespace spacemint::ctl {

namespace {

constexpr Box room{16, 44, 1168, 700};
constexpr double height = 776;
constexpr double lineHeight = 14;
constexpr double inset = 6;
// The average width of a character at 11 pixels: a drawing cannot measure its texts.
constexpr double characterWidth = 6;

// The text for XML. A name may have any byte.
std::string escaped(std::string_view text) {
  std::string result;
  for (const char c : withInvalidUtf8Replaced(text)) {
    switch (c) {
      case '&':
        result += "&amp;";
        break;
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      case '"':
        result += "&quot;";
        break;
      default:
        result += static_cast<unsigned char>(c) < ' ' ? ' ' : c;
    }
  }
  return result;
}

std::size_t charactersOf(std::string_view text) {
  std::size_t count = 0;
  for (const char c : text) count += (static_cast<unsigned char>(c) & 0xC0U) != 0x80 ? 1 : 0;
  return count;
}

// As much of the text as fits into the width.
std::string elided(const std::string& text, double width) {
  const auto fitting = static_cast<std::size_t>(std::max(0.0, width / characterWidth));
  if (charactersOf(text) <= fitting) return text;
  std::size_t end = 0;
  std::size_t count = 0;
  while (end < text.size() && count + 1 < fitting) {
    ++end;
    while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80) ++end;
    ++count;
  }
  return text.substr(0, end) + "…";
}

class Drawing {
 public:
  explicit Drawing(const std::string& locale) : locale_(locale) {}

  void head(const std::string& title, const std::string& summary) {
    svg_ =
        R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 1200 776" role="img" font-family="Inter, sans-serif" font-size="11">)";
    svg_ += "\n<title>" + escaped(title) + "</title>\n<desc>" + escaped(summary) + "</desc>\n<style>\n";
    for (const PictureColour& colour : pictureColours) rule(colour.name, colour.light);
    svg_ += "@media (prefers-color-scheme: dark) {\n";
    for (const PictureColour& colour : pictureColours) rule(colour.name, colour.dark);
    svg_ += "}\n</style>\n";
    box({0, 0, room.right() + room.x, height}, "canvas");
  }

  void box(const Box& box, std::string_view colour) {
    char text[120];
    std::snprintf(text, sizeof text, R"(<rect x="%.1f" y="%.1f" width="%.1f" height="%.1f" rx="%d" class=")",
                  box.x, box.y, box.width, box.height, box.width >= 16 && box.height >= 16 ? 3 : 0);
    svg_.append(text).append(colour).append("\"/>\n");
  }

  void text(double x, double y, const std::string& words, std::string_view colour,
            std::string_view more = "") {
    char text[60];
    std::snprintf(text, sizeof text, R"(<text x="%.1f" y="%.1f" class=")", x, y);
    svg_.append(text)
        .append(colour)
        .append("\"")
        .append(more)
        .append(">")
        .append(escaped(words))
        .append("</text>\n");
  }

  void tile(const Tile& tile, const std::string& path) {
    svg_ += "<g><title>" + escaped(path.empty() ? PictureText::partName(tile) : path) + ", " +
            escaped(PictureText::inTile(tile, locale_)) + "</title>\n";
    if (tile.kind == Tile::Kind::frame) {
      box(tile.box, "frame");
    } else {
      fill(tile);
    }
    label(tile);
    svg_ += "</g>\n";
  }

  std::string finish() { return std::move(svg_) + "</svg>\n"; }

 private:
  void rule(std::string_view name, std::string_view colour) {
    svg_.append(".").append(name).append(" { fill: #").append(colour).append("; }\n");
  }

  void fill(const Tile& tile) {
    const Bytes growth = tile.growth();
    const bool shrank = growth < 0 && -growth > tile.size / 10;
    box(tile.box, tile.kind == Tile::Kind::small ? "well" : shrank ? "shrunk" : "block");
    if (shrank) box({tile.box.x, tile.box.y, tile.box.width, 2}, "teal");
    const double came =
        growth > 0 ? tile.box.height * static_cast<double>(growth) / static_cast<double>(tile.size) : 0;
    if (came < 1) return;
    box({tile.box.x, tile.box.bottom() - came, tile.box.width, came}, "grown");
    box({tile.box.x, tile.box.bottom() - came, tile.box.width, 1}, "amberInk");
  }

  void label(const Tile& tile) {
    constexpr double narrowest = 40;
    constexpr double lowest = 18;
    if (tile.box.width < narrowest || tile.box.height < lowest) return;
    const double width = tile.box.width - 2 * inset;
    const bool isFrame = tile.kind == Tile::Kind::frame;
    const std::string name = tile.node != nullptr ? tile.node->name : PictureText::partName(tile);
    const std::string about = PictureText::inTile(tile, locale_);
    double y = tile.box.y + lineHeight;
    if (isFrame) {
      const std::string size = ByteFormat::string(tile.size, locale_);
      const double left = width - static_cast<double>(charactersOf(name) + 1) * characterWidth * 1.1;
      text(tile.box.x + inset, y, elided(name, width), "ink", R"( font-weight="600")");
      if (left > static_cast<double>(charactersOf(size)) * characterWidth)
        text(tile.box.right() - inset, y, size, "secondary", R"( text-anchor="end")");
      return;
    }
    text(tile.box.x + inset, y, elided(name, width), tile.kind == Tile::Kind::small ? "secondary" : "ink");
    constexpr double twoLines = 34;
    if (tile.box.height >= twoLines) text(tile.box.x + inset, y + lineHeight, elided(about, width), "ink");
  }

  std::string locale_;
  std::string svg_;
};

}  // namespace

std::string pictureSvg(const Snapshot& scan, const ChangeTree* changes, std::string_view legend,
                       const std::string& locale) {
  Drawing drawing{locale};
  const std::string title = scan.rootPath() + ", " + ByteFormat::string(scan.root.size, locale);
  drawing.head(title, PictureText::summary(scan.root, locale));
  drawing.text(room.x, room.y - 16, title, "ink", R"( font-weight="600" font-size="15")");
  const std::vector<Tile> tiles = treeMap({.node = &scan.root, .change = changes}, room);
  for (std::size_t i = 0; i < tiles.size(); ++i) drawing.tile(tiles[i], pathOf(tiles, i, scan.rootPath()));
  constexpr double swatch = 10;
  const double y = room.bottom() + 12;
  if (changes != nullptr) drawing.box({room.x, y, swatch, swatch}, "grown");
  drawing.text(room.x + (changes != nullptr ? swatch + inset : 0), y + swatch - 1, std::string{legend},
               "secondary");
  return drawing.finish();
}

}  // namespace spacemint::ctl
