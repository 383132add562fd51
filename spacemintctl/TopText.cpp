#include "spacemintctl/TopText.h"

#include "core/base/ByteFormat.h"
#include "core/base/Translation.h"
#include "core/base/Unicode.h"
#include "core/wording/FindingText.h"
#include "spacemintctl/Console.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <functional>

namespace spacemint::ctl {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::array<const char*, 3> columnTitles{i18nMark("NOW"), i18nMark("1 MIN"), i18nMark("10 MIN")};

Bytes figureFor(const GrowthFigures& figures, TopOrder order) {
  return order == TopOrder::now      ? figures.tenSeconds
         : order == TopOrder::minute ? figures.minute
                                     : figures.tenMinutes;
}

std::vector<GrowthLine> ordered(const TopView& view) {
  std::vector<GrowthLine> lines = view.watch.lines();
  // The watch's own order is that of the last minute.
  if (view.order != TopOrder::minute)
    std::ranges::stable_sort(lines, std::greater{},
                             [&](const GrowthLine& line) { return figureFor(line.figures, view.order); });
  return lines;
}

std::vector<std::string> figuresOf(const GrowthFigures& figures, bool isFreed, const Wording& wording) {
  const auto text = [&](Bytes bytes) {
    if (bytes == 0) return std::string{"\u2013"};
    return isFreed ? FindingText::lost(bytes, wording.locale) : ByteFormat::string(bytes, wording.locale);
  };
  const Bytes rate = figures.tenSeconds / 10;
  return {rate == 0 ? text(0) : i18n("{size}/s", {{"size", text(rate)}}), text(figures.minute),
          text(figures.tenMinutes)};
}

std::string shownPlace(const GrowthLine& line, const Wording& wording) {
  return printable(Paths::display(line.path, wording.home)) + (line.isDirectory ? "/" : "") +
         (line.isFreed ? "  " + i18n("freed") : "");
}

std::string head(const TopView& view, const Wording& wording) {
  const GrowthWatch& watch = view.watch;
  const auto size = [&](Bytes bytes) { return ByteFormat::string(bytes, wording.locale); };
  std::string text =
      i18n("Growing below {path}    {size} free",
           {{"path", printable(Paths::display(view.root, wording.home))}, {"size", size(watch.free())}});
  const Bytes rate = watch.lost().tenSeconds / 10;
  if (rate != 0) {
    text += ", " + i18n(rate > 0 ? i18nMark("{size}/s less") : i18nMark("{size}/s more"),
                        {{"size", size(std::abs(rate))}});
  }
  if (watch.untilFull()) text += "    " + FindingText::fullIn(*watch.untilFull());
  return text + (view.isHeld ? "    " + i18n("held") : "") + '\n';
}

Json jsonOf(const GrowthFigures& figures) {
  return {{"tenSeconds", figures.tenSeconds}, {"minute", figures.minute}, {"tenMinutes", figures.tenMinutes}};
}

Json jsonOf(const GrowthLine& line) {
  Json json{{"path", withInvalidUtf8Replaced(line.path)},
            {"isDirectory", line.isDirectory},
            {"isFreed", line.isFreed},
            {"seconds", line.duration.count()}};
  json.update(jsonOf(line.figures));
  return json;
}

}  // namespace

std::string topPage(const TopView& view, const Wording& wording) {
  std::string text = head(view, wording);
  const auto lines = ordered(view);
  const bool isElsewhere = view.watch.elsewhere().minute >= GrowthWatch::lineMinimum;
  if (lines.empty() && !isElsewhere) return text + i18n("Nothing grows by 10 MB or more in a minute.") + "\n";
  Table table{3};
  std::vector<std::string> titles;
  for (const char* title : columnTitles) titles.push_back(i18n(title));
  titles.at(static_cast<std::size_t>(view.order)) =
      "\u25be" + titles.at(static_cast<std::size_t>(view.order));
  titles.push_back(i18n("WHERE"));
  table.add(std::move(titles));
  for (const GrowthLine& line : lines) {
    auto row = figuresOf(line.figures, line.isFreed, wording);
    row.push_back(shownPlace(line, wording));
    table.add(std::move(row));
  }
  if (isElsewhere) {
    auto row = figuresOf(view.watch.elsewhere(), false, wording);
    row.push_back(i18n("not in any folder (removed but open, or outside)"));
    table.add(std::move(row));
  }
  return text + table.text();
}

std::string topLines(const TopView& view, Date date, const Wording& wording) {
  Table table{0};
  for (const GrowthLine& line : ordered(view)) {
    if (!line.isGoingOn) continue;
    auto figures = figuresOf(line.figures, line.isFreed, wording);
    table.add({localTime(date), figures[0], i18n("{size} in 1 min", {{"size", figures[1]}}),
               shownPlace(line, wording)});
  }
  return table.text();
}

std::string topJson(const TopView& view, Date date) {
  const GrowthWatch& watch = view.watch;
  Json lines = Json::array();
  for (const GrowthLine& line : watch.lines()) lines.push_back(jsonOf(line));
  return Json{{"date", universalTime(date)},
              {"root", withInvalidUtf8Replaced(view.root)},
              {"free", watch.free()},
              {"lost", jsonOf(watch.lost())},
              {"secondsUntilFull", watch.untilFull() ? Json(watch.untilFull()->count()) : Json(nullptr)},
              {"lines", std::move(lines)},
              {"elsewhere", jsonOf(watch.elsewhere())}}
             .dump() +
         '\n';
}

}  // namespace spacemint::ctl
