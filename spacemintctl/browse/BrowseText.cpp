#include "spacemintctl/browse/BrowseText.h"

#include "core/analysis/FileKinds.h"
#include "core/base/AsciiText.h"
#include "core/base/ByteFormat.h"
#include "core/base/RelativeTime.h"
#include "core/base/Translation.h"
#include "core/tree/Paths.h"
#include "core/volume/SharedFiles.h"
#include "core/wording/FindingText.h"
#include "spacemintctl/Console.h"
#include "spacemintctl/browse/Cells.h"

#include <array>
#include <string_view>
#include <utility>

namespace spacemint::ctl {

namespace {

struct KeyHelp {
  std::string_view keys;
  std::string_view text;
};

constexpr std::array keyHelp = std::to_array<KeyHelp>({
    {"up, down, k, j", "Move; Page Up, Page Down, Home and End too"},
    {"right, l, Enter", "Open the folder"},
    {"left, h, Backspace", "Back to the folder above"},
    {"", ""},
    {"s  n  C  M  G", "Order by size, name, files, age, growth; again: the other way round"},
    {"t", "Folders first"},
    {"g", "Bar, share, both or none"},
    {"", ""},
    {"i", "What is known of the item"},
    {"space", "Mark the item; \"d\" then removes all marked ones"},
    {"u", "Unmark everything"},
    {"d, Delete", "Remove: shows what goes, and asks"},
    {"c", "What is safe to clean in this folder"},
    {"", ""},
    {"b", "Compare with another scan: what grew since"},
    {"/", "Search; the words are those of \"spacemintctl find\""},
    {"r", "Measure this folder again"},
    {"e", "Export the scan to a file"},
    {"q", "Quit"},
});

Paragraph sized(Bytes size, std::string name, const std::string& locale) {
  return {.text = std::move(name),
          .style = Style::strong,
          .label = fitted(ByteFormat::string(size, locale), 8, Side::right)};
}

}  // namespace

std::vector<Paragraph> BrowseText::help() {
  std::vector<Paragraph> lines;
  for (const KeyHelp& each : keyHelp)
    lines.push_back({.text = std::string{each.text}, .label = std::string{each.keys}});
  return lines;
}

std::string BrowseText::figure(Bytes size, std::int64_t files, const std::string& locale) {
  return i18np("{size} in {count} file", "{size} in {count} files", files,
               {{"size", ByteFormat::string(size, locale)}, {"count", groupedNumber(files, locale)}});
}

std::vector<Paragraph> BrowseText::info(const Row& row, const BrowseView& view, const std::string& before,
                                        const std::string& about) {
  const std::string& locale = view.locale;
  std::vector<Paragraph> lines{{Paths::display(row.path, view.home), Style::strong}, {""}};
  const auto say = [&](std::string_view what, const std::string& text) {
    if (!text.empty()) lines.push_back({.text = text, .label = std::string{what}});
  };
  if (!about.empty()) lines.push_back({about}), lines.push_back({""});
  const std::string share = percentage(row.size, view.whole);
  say("Size", ByteFormat::string(row.size, locale) + (share.empty() ? "" : ", " + share + " of this list"));
  if (const auto freed = row.isDirectory ? std::nullopt : SharedFiles::freesAtMost(row.path))
    say("Removal", FindingText::freesAtMost(*freed, locale));
  if (row.isDirectory) {
    say("Files", groupedNumber(row.fileCount, locale));
  } else {
    static const FileKinds kinds = FileKinds::ofThisSystem();
    say("Kind", std::string{rowOf(kinds.of(row.name)).title});
  }
  if (row.modified)
    say("Changed",
        localTime(*row.modified) + " (" + RelativeTime::string(*row.modified, view.now, locale) + ")");
  if (!before.empty() && row.growth) {
    say("Growth", (*row.growth > 0 ? "+" : "") + ByteFormat::string(*row.growth, locale) +
                      (row.isNew ? ", new since " : " since ") + before);
  }
  return lines;
}

std::vector<Paragraph> BrowseText::removal(const RemovalOffer& offer, const BrowseView& view) {
  constexpr std::size_t named = 8;
  std::vector<Paragraph> lines;
  const auto& steps = offer.forGood->steps;
  for (std::size_t i = 0; i < std::min(steps.size(), named); ++i)
    lines.push_back(sized(steps[i].size, Paths::display(steps[i].path, view.home), view.locale));
  if (steps.size() > named)
    lines.push_back({.text = "and " + std::to_string(steps.size() - named) + " more", .label = " "});
  if (steps.size() > 1) lines.push_back(sized(offer.forGood->size(), "together", view.locale));
  for (const std::string& each : offer.refused) lines.push_back({each, Style::warning});
  lines.push_back({""});
  if (steps.size() == 1) lines.push_back({offer.forGood->note});
  if (offer.toTrash) lines.push_back({"The Trash keeps it until you empty it; the space is free only then."});
  return lines;
}

std::vector<Paragraph> BrowseText::cleanup(const CleanupPlan& plan, const BrowseView& view) {
  std::vector<Paragraph> text{{plan.subject, Style::strong}};
  if (plan.detail) text.push_back({*plan.detail});
  for (const CleanupStep& step : plan.steps) {
    for (const auto& part : step.parts) text.push_back(sized(part.size, part.name, view.locale));
  }
  text.push_back({""});
  for (const std::string_view line : lines(plan.note)) text.push_back({std::string{line}});
  return text;
}

std::string BrowseText::scanName(Date date, Date now, const std::string& locale) {
  return localTime(date) + " (" + RelativeTime::string(date, now, locale) + ")";
}

std::string BrowseText::keys(bool isFolder, bool isReadOnly) {
  std::string text = isFolder ? "? keys  q quit  Enter open  h back" : "? keys  q quit  Enter show  Esc back";
  if (!isReadOnly) text += "  d remove";
  return text + (isFolder ? "  c clean  / search  b compare" : "");
}

}  // namespace spacemint::ctl
