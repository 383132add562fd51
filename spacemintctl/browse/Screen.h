#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace spacemint::ctl {

/// What a piece of text is; the terminal decides how it looks.
enum class Style : std::uint8_t { plain, dim, strong, heading, folder, bar, grew, shrank, marked, warning };

struct Span {
  std::string text;
  Style style = Style::plain;
};

/// A line of exactly the width of the screen. A chosen line is shown inverted.
struct Line {
  std::vector<Span> spans;
  bool isChosen = false;

  std::string text() const {
    std::string all;
    for (const Span& span : spans) all += span.text;
    return all;
  }
};

/// Everything that a terminal shows, from the top to the bottom.
struct Screen {
  std::vector<Line> lines;
};

struct ScreenSize {
  std::size_t columns = 80;
  std::size_t rows = 24;
};

/// A key or a movement of the mouse.
struct Key {
  enum class Kind : std::uint8_t {
    character,
    up,
    down,
    left,
    right,
    pageUp,
    pageDown,
    home,
    end,
    enter,
    escape,
    backspace,
    remove,
    click,
    wheelUp,
    wheelDown,
    other
  };

  Kind kind = Kind::other;
  /// Of `character`.
  char32_t character = 0;
  /// The place on the screen, of `click`.
  std::size_t row = 0;
  std::size_t column = 0;

  bool is(char32_t wanted) const { return kind == Kind::character && character == wanted; }
};

}  // namespace spacemint::ctl
