#include "Spacemint/views/NotInFiles.h"

#include "Spacemint/views/ShownText.h"
#include "core/base/ByteFormat.h"
#include "core/base/Isolate.h"
#include "core/wording/AccountText.h"

#include <algorithm>

namespace spacemint {

namespace {

constexpr std::size_t shownDetails = 10;

// These are in the sentence above the list.
bool isInSum(const AccountLine& line, bool isWhole) {
  return line.part == AccountPart::files || line.part == AccountPart::free ||
         (line.part == AccountPart::rest && !isWhole);
}

double share(Bytes part, Bytes whole) {
  return whole < 1 ? 0 : std::clamp(static_cast<double>(part) / static_cast<double>(whole), 0.0, 1.0);
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
      item.parts.push_back({.id = "more", .title = std::to_string(rest) + " more", .sizeText = ""});
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
    rows_.assign({}, {.text = current.isReading()   ? "Reading what is not in files…"
                              : current.hasFailed() ? "What is not in files could not be read."
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
  shares_ = {share(account.scanned.files, total), share(known, total),
             account.scanned.isWhole ? 0 : share(account.rest, total)};
  std::vector<ListItem> items;
  for (const AccountLine& line : AccountText::lines(account, host_.home, locale)) {
    if (!isInSum(line, account.scanned.isWhole)) items.push_back(itemOf(line, locale));
  }
  rows_.assign(std::move(items));
}

}  // namespace spacemint
