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

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace spacemint::ctl {

namespace {

struct KeyHelp {
  const char* keys;
  const char* text;
};

constexpr std::array keyHelp = std::to_array<KeyHelp>({
    {i18nMark("up, down, k, j"), i18nMark("Move; Page Up, Page Down, Home and End too")},
    {i18nMark("right, l, Enter"), i18nMark("Open the folder")},
    {i18nMark("left, h, Backspace"), i18nMark("Back to the folder above")},
    {"", ""},
    {i18nMark("s  n  C  M  G"),
     i18nMark("Order by size, name, files, age, growth; again: the other way round")},
    {i18nMark("t"), i18nMark("Folders first")},
    {i18nMark("g"), i18nMark("Bar, share, both or none")},
    {"", ""},
    {i18nMark("."), i18nMark("Leave out names that begin with a dot, or show them")},
    {i18nMark("i"), i18nMark("What is known of the item")},
    {i18nMark("space"), i18nMark("Mark the item; \"d\" then removes all marked ones")},
    {i18nMark("u"), i18nMark("Unmark everything")},
    {i18nMark("d, Delete"), i18nMark("Remove: shows what goes, and asks")},
    {i18nMark("c"), i18nMark("What is safe to clean in this folder")},
    {"", ""},
    {i18nMark("b"), i18nMark("Compare with another scan: what grew since")},
    {i18nMark("/"), i18nMark("Search; the words are those of \"spacemintctl find\"")},
    {i18nMark("r"), i18nMark("Measure this folder again")},
    {i18nMark("!"), i18nMark("Open a shell in this folder")},
    {i18nMark("e"), i18nMark("Export the scan to a file")},
    {i18nMark("q"), i18nMark("Quit")},
});

struct FlagHelp {
  Flag flag;
  const char* text;
};

constexpr std::array flagHelp = std::to_array<FlagHelp>({
    {Flag::unread, i18nMark("Could not be read")},
    {Flag::unreadBelow, i18nMark("Not all of it could be read: it is at least this large")},
    {Flag::excluded, i18nMark("Excluded from scans")},
    {Flag::elsewhere, i18nMark("On another volume")},
    {Flag::linked, i18nMark("Has several names (hard links), and counts its share at each")},
    {Flag::special, i18nMark("Neither a file nor a folder, such as a symbolic link")},
    {Flag::emptyFolder, i18nMark("Empty")},
});

std::string flagText(Flag flag) {
  const auto found = std::ranges::find(flagHelp, flag, &FlagHelp::flag);
  return found == flagHelp.end() ? "" : i18n(found->text);
}

Paragraph sized(Bytes size, std::string name, const std::string& locale) {
  return {.text = std::move(name),
          .style = Style::strong,
          .label = fitted(ByteFormat::string(size, locale), 8, Side::right)};
}

}  // namespace

std::vector<Paragraph> BrowseText::help() {
  std::vector<Paragraph> lines;
  for (const KeyHelp& each : keyHelp)
    lines.push_back(*each.text == '\0' ? Paragraph{}
                                       : Paragraph{.text = i18n(each.text), .label = i18n(each.keys)});
  lines.push_back({});
  for (const FlagHelp& each : flagHelp)
    lines.push_back({.text = i18n(each.text), .label = std::string{signOf(each.flag)}});
  return lines;
}

std::string BrowseText::figure(const std::string& size, std::int64_t files, const std::string& locale) {
  return i18np("{size} in {count} file", "{size} in {count} files", files,
               {{"size", size}, {"count", groupedNumber(files, locale)}});
}

std::vector<Paragraph> BrowseText::info(const Row& row, const BrowseView& view, const std::string& before,
                                        const std::string& about) {
  const std::string& locale = view.locale;
  std::vector<Paragraph> lines{{Paths::display(row.path, view.home), Style::strong}, {""}};
  const auto say = [&](std::string_view what, const std::string& text) {
    if (!text.empty()) lines.push_back({.text = text, .label = std::string{what}});
  };
  if (!about.empty()) lines.push_back({about}), lines.push_back({""});
  if (const std::string text = flagText(row.flag); !text.empty())
    lines.push_back({text, Style::warning}), lines.push_back({""});
  if (row.isUnmeasured()) {
    if (row.size > 0)
      say(i18n("Size"), i18n("{size}, as last measured", {{"size", ByteFormat::string(row.size, locale)}}));
    return lines;
  }
  const std::string share = percentage(row.size, view.whole);
  const std::string bytes = ByteFormat::string(row.size, locale);
  say(i18n("Size"),
      share.empty() ? bytes : i18n("{size}, {share} of this list", {{"size", bytes}, {"share", share}}));
  if (const auto freed = row.isDirectory ? std::nullopt : SharedFiles::freesAtMost(row.path))
    say(i18n("Removal"), FindingText::freesAtMost(*freed, locale));
  if (row.isDirectory) {
    say(i18n("Files"), groupedNumber(row.fileCount, locale));
  } else {
    static const FileKinds kinds = FileKinds::ofThisSystem();
    say(i18n("Kind"), i18n(rowOf(kinds.of(row.name)).title));
    if (row.look) say(i18n("Length"), ByteFormat::string(row.look->length, locale));
    if (row.look && row.look->links > 1) say(i18n("Names"), groupedNumber(row.look->links, locale));
  }
  if (row.modified)
    say(row.isDirectory ? i18n("Newest") : i18n("Changed"), scanName(*row.modified, view.now, locale));
  if (!before.empty() && row.growth.value_or(0) != 0) {
    const std::string growth = signedSize(*row.growth, locale);
    say(i18n("Growth"),
        i18n(row.isNew ? i18nMark("{size}, new since {date}") : i18nMark("{size} since {date}"),
             {{"size", growth}, {"date", before}}));
  }
  return lines;
}

std::vector<Paragraph> BrowseText::removal(const RemovalOffer& offer, const BrowseView& view) {
  constexpr std::size_t named = 8;
  std::vector<Paragraph> lines;
  const auto& steps = offer.forGood->steps;
  for (std::size_t i = 0; i < std::min(steps.size(), named); ++i)
    lines.push_back(sized(steps[i].size, Paths::display(steps[i].path, view.home), view.locale));
  if (steps.size() > named) lines.push_back({.text = restText(steps.size() - named), .label = " "});
  if (steps.size() > 1) lines.push_back(sized(offer.forGood->size(), i18n("together"), view.locale));
  for (const std::string& each : offer.refused) lines.push_back({each, Style::warning});
  for (const std::string& each : offer.warnings) lines.push_back({each, Style::warning});
  lines.push_back({""});
  // Where there is a choice, it says itself which way is for good.
  if (steps.size() == 1 && !(offer.toTrash && offer.forGood->note == i18n(deleteNote)))
    lines.push_back({offer.forGood->note});
  if (offer.toTrash)
    lines.push_back({i18n("The Trash keeps it until you empty it; the space is free only then.")});
  return lines;
}

std::vector<Paragraph> BrowseText::cleanup(const CleanupPlan& plan, const BrowseView& view) {
  std::vector<Paragraph> text{{plan.subject, Style::strong}};
  if (plan.detail) text.push_back({*plan.detail});
  for (const CleanupStep& step : plan.steps) {
    for (const auto& part : step.parts) text.push_back(sized(part.size, part.name, view.locale));
  }
  text.push_back({""});
  if (!plan.warning.empty()) text.push_back({plan.warning, Style::warning});
  for (const std::string_view line : lines(plan.note)) text.push_back({std::string{line}});
  return text;
}

std::string BrowseText::scanName(Date date, Date now, const std::string& locale) {
  return i18nc("a date and how long ago it was", "{date} ({age})",
               {{"date", localTime(date)}, {"age", RelativeTime::string(date, now, locale)}});
}

std::string BrowseText::about(std::string_view title, std::string_view advice) {
  return i18nc("a folder's title and what its removal means", "{title}: {advice}",
               {{"title", title}, {"advice", advice}});
}

std::string BrowseText::doneLabel(const CleanupPlan& plan, const std::string& locale) {
  const std::int64_t count = std::ssize(plan.steps);
  const std::string number = groupedNumber(count, locale);
  return plan.steps.front().kind == CleanupStep::Kind::moveToTrash
             ? i18np("Moved {count} item to the Trash", "Moved {count} items to the Trash", count,
                     {{"count", number}})
             : i18np("Deleted {count} item", "Deleted {count} items", count, {{"count", number}});
}

std::string BrowseText::marks(const std::map<std::string, Bytes>& marked, const std::string& locale) {
  const auto isInAnother = [&](std::string path) {
    while (path.size() > 1) {
      if (marked.contains(path = Paths::parent(path))) return true;
    }
    return false;
  };
  Bytes size = 0;
  for (const auto& [path, each] : marked) {
    if (!isInAnother(path)) size = saturatingAdd(size, each);
  }
  const std::int64_t count = std::ssize(marked);
  return i18np("{count} marked, {size}", "{count} marked, {size}", count,
               {{"count", groupedNumber(count, locale)}, {"size", ByteFormat::string(size, locale)}});
}

std::string BrowseText::keys(bool isFolder, bool isReadOnly) {
  if (isFolder) {
    return isReadOnly ? i18n("? keys  q quit  Enter open  h back  c clean  / search  b compare")
                      : i18n("? keys  q quit  Enter open  h back  d remove  c clean  / search  b compare");
  }
  return isReadOnly ? i18n("? keys  q quit  Enter show  Esc back")
                    : i18n("? keys  q quit  Enter show  Esc back  d remove");
}

}  // namespace spacemint::ctl
