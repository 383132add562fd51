#include "Spacemint/views/NotInFiles.h"

#include "Spacemint/views/ShownText.h"
#include "core/base/ByteFormat.h"
#include "core/base/Isolate.h"
#include "core/base/Translation.h"
#include "core/wording/AccountText.h"
#include "core/wording/FindingText.h"

#include <algorithm>
#include <array>

namespace spacemint {

namespace {

constexpr std::size_t shownDetails = 10;

// The order of the rows: first what can be changed. The other parts are in the sentence above the list.
constexpr std::array rowOrder{AccountPart::deleted,   AccountPart::heldBack, AccountPart::ownBytes,
                              AccountPart::folders,   AccountPart::inlined,  AccountPart::saved,
                              AccountPart::snapshots, AccountPart::unread,   AccountPart::otherVolumes,
                              AccountPart::rest};

// What lies outside of the scanned folder is in the sentence, too.
bool isShown(const AccountLine& line, bool isWhole) {
  return std::ranges::find(rowOrder, line.part) != rowOrder.end() &&
         (line.part != AccountPart::rest || isWhole);
}

std::string sizeText(std::optional<Bytes> size, const std::string& locale) {
  return size ? ByteFormat::string(*size, locale) : "";
}

ListItem itemOf(const AccountLine& line, const std::string& locale) {
  ListItem item{.id = std::string{AccountText::keyOf(line.part)},
                .title = line.title,
                .subtitle = line.note,
                .sizeText = sizeText(line.size, locale),
                .symbol = line.symbol};
  for (const AccountLine::Detail& detail : line.details) {
    if (item.parts.size() == shownDetails) {
      const auto rest = static_cast<std::int64_t>(line.details.size() - shownDetails);
      item.parts.push_back(
          {.id = "more",
           .title = i18np("{count} more", "{count} more", rest, {{"count", groupedNumber(rest, locale)}}),
           .sizeText = ""});
      break;
    }
    item.parts.push_back({.id = std::to_string(item.parts.size()),
                          .title = isolatedPath(detail.title),
                          .subtitle = detail.note,
                          .sizeText = sizeText(detail.size, locale)});
  }
  return item;
}

}  // namespace

void addLeftOut(std::vector<ListItem>& items, const UiHost& host, const ShownFolder& folder) {
  const Coverage& coverage = folder.snapshot->coverage;
  if (const ExcludedSum sum = coverage.excludedBelow(folder.path); sum.items > 0) {
    items.push_back({.id = "excluded",
                     .title = i18n(FindingText::excludedTitle),
                     .subtitle = FindingText::excludedItems(sum, host.locale),
                     .sizeText = sum.unknown == sum.items ? "" : ByteFormat::string(sum.size, host.locale),
                     .symbol = "app.dashed"});
  }
  for (const LeftOut& item : coverage.leftOut) {
    if (item.kind == LeftOut::Kind::excluded) continue;
    if (folderAt(host.model, item.path).path != folder.path) continue;
    items.push_back(
        {.id = "left out " + item.path,
         .title = isolatedPath(Paths::display(item.path, host.homeInScan())),
         .subtitle = i18n(
             "{item}, not scanned",
             {{"item", FindingText::leftOutTitle(item, host.desktop.clock.now(), ShownText::wordsLocale)}}),
         .sizeText = "",
         .symbol = item.kind == LeftOut::Kind::snapshot ? "square.stack.3d.up" : "externaldrive"});
  }
}

std::vector<ListItem> notInFilesItems(const Account& account, const UiHost& host) {
  auto lines = AccountText::lines(account, host.home, host.locale, host.desktop.clock.now());
  std::erase_if(lines, [&](const AccountLine& line) { return !isShown(line, account.scanned.isWhole); });
  std::ranges::sort(lines, {},
                    [](const AccountLine& line) { return std::ranges::find(rowOrder, line.part); });
  std::vector<ListItem> items;
  for (const AccountLine& line : lines) items.push_back(itemOf(line, host.locale));
  return items;
}

void addNotInFiles(std::vector<ListItem>& items, const UiHost& host, const ShownFolder& folder,
                   bool isUnfolded, std::function<void()> onUnfold) {
  const auto parts = volumeParts(host.model, folder);
  if (!parts || parts->notInFiles <= 0) return;
  auto lines = notInFilesItems(*host.model.account().account(), host);
  std::string titles;
  for (const ListItem& line : lines) titles += (titles.empty() ? "" : " · ") + line.title;
  items.push_back({.id = std::string{notInFilesId},
                   .size = parts->notInFiles,
                   .title = i18n("Not in files"),
                   .subtitle = std::move(titles),
                   .symbol = "unexplained",
                   .isUnfolded = isUnfolded,
                   .onUnfold = std::move(onUnfold)});
  if (!isUnfolded) return;
  for (ListItem& line : lines) {
    line.id = std::string{notInFilesId} + "/" + line.id;
    line.depth = 1;
    line.parts.clear();
    items.push_back(std::move(line));
  }
}

NotInFiles::NotInFiles(const UiHost& host) : host_(host), rows_(host) {
  connect(&host_.model.account(), &CurrentAccount::changed, this, &NotInFiles::update);
  update();
}

bool NotInFiles::isKnown() const {
  const CurrentAccount& account = host_.model.account();
  return account.account() || account.isReading() || account.hasFailed();
}

void NotInFiles::update() {
  const CurrentAccount& current = host_.model.account();
  if (const auto& account = current.account()) {
    show(*account);
  } else {
    matters_ = false;
    size_.clear();
    sum_.clear();
    shares_.clear();
    rows_.assign({}, {.text = current.isReading()   ? i18n("Reading what is not in files…")
                              : current.hasFailed() ? i18n("The next scan shows what is not in files.")
                                                    : "",
                      .isWaiting = current.isReading()});
  }
  Q_EMIT changed();
}

void NotInFiles::show(const Account& account) {
  const std::string& locale = host_.locale;
  const Bytes known = account.knownNotInFiles();
  matters_ = account.matters();
  size_ = ShownText::plain(ByteFormat::string(known, locale));
  sum_ = ShownText::sentence(AccountText::sum(account, locale));
  const Bytes total = account.space.total;
  shares_ = {ShownText::share(account.scanned.files, total), ShownText::share(known, total),
             account.scanned.isWhole ? 0 : ShownText::share(account.rest, total)};
  rows_.assign(notInFilesItems(account, host_));
}

}  // namespace spacemint
