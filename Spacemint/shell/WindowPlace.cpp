#include "Spacemint/shell/WindowPlace.h"

#include <charconv>

namespace spacemint {

namespace {

std::optional<int> numberOf(std::string_view text) {
  int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  return number;
}

std::optional<QPoint> pointOf(std::string_view text) {
  const auto gap = text.find(' ');
  if (gap == std::string_view::npos) return std::nullopt;
  const auto x = numberOf(text.substr(0, gap));
  const auto y = numberOf(text.substr(gap + 1));
  if (!x || !y) return std::nullopt;
  return QPoint{*x, *y};
}

}  // namespace

std::optional<WindowPlace> windowPlace(const std::string& text, QSize size, std::span<const QRect> areas) {
  const auto point = pointOf(text);
  if (!point) return std::nullopt;
  // The part of the window by which it is recognised and moved.
  constexpr int height = 40;
  const QRect top{*point, QSize{size.width(), height}};
  for (const QRect& area : areas) {
    const QRect seen = top.intersected(area);
    if (seen.height() == height && seen.width() > size.width() / 2) return WindowPlace{*point, area};
  }
  return std::nullopt;
}

std::string textOf(QPoint position) {
  return std::to_string(position.x()) + ' ' + std::to_string(position.y());
}

}  // namespace spacemint
