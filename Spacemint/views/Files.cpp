#include "Spacemint/views/Files.h"

#include "Spacemint/views/FolderText.h"
#include "Spacemint/views/ShownText.h"
#include "core/base/ByteFormat.h"
#include "core/base/RelativeTime.h"
#include "core/base/TextList.h"
#include "core/base/Translation.h"
#include "core/tree/Paths.h"
#include "core/wording/FindingText.h"

#include <algorithm>
#include <array>

namespace spacemint {

namespace {

constexpr std::size_t shownAtMost = 500;

struct AgeChoice {
  // The value of "older:" in a search; empty for no limit.
  std::string_view value;
  const char* title;
};
constexpr std::array ageChoices{
    AgeChoice{"", i18nMark("Any age")}, AgeChoice{"1m", i18nMark("Unchanged for a month")},
    AgeChoice{"6m", i18nMark("Unchanged for six months")}, AgeChoice{"1y", i18nMark("Unchanged for a year")},
    AgeChoice{"2y", i18nMark("Unchanged for two years")}};

}  // namespace

struct Files::Found {
  struct Item {
    std::string path;
    Bytes size = 0;
    std::optional<Date> modified;
    bool isDirectory = false;
  };
  std::vector<Item> items;
  std::size_t count = 0;
};

Files::Files(const UiHost& host) : host_(host), largest_(host) {
  // No row of one computer stays for the other one, not until its search is done.
  connect(&host_.model.shown(), &ShownScan::sourceChanged, this, [this] { largest_.assign({}); });
  connect(&host_.model.shown(), &ShownScan::findingsChanged, this, [this] {
    update();
    Q_EMIT kindsChanged();
  });
  connect(&host_.model, &AppModel::fileSearchChanged, this, [this] {
    update();
    Q_EMIT wordsChanged();
    Q_EMIT kindsChanged();
  });
  update();
}

QString Files::title() const {
  return ShownText::plain(showsFound_ ? i18n("Found") : i18n("Largest files"));
}

QString Files::words() const {
  return QString::fromStdString(host_.model.fileSearch());
}

void Files::setWords(const QString& words) {
  host_.model.setFileSearch(words.toStdString());
}

void Files::update() {
  ++searches_;
  query_ = parseSearch(host_.model.fileSearch());
  if (!query_) {
    status_ = ShownText::sentence(query_.error().message);
    if (largest_.count() == 0) largest_.assign({});  // nothing was looked for
  } else if (*query_ == SearchQuery{}) {
    status_.clear();
    showLargest();
  } else {
    startSearch();
  }
  Q_EMIT changed();
}

Bytes Files::minimum() const {
  const SharedSnapshot& snapshot = host_.model.shown().snapshot();
  return snapshot ? snapshot->minNodeSize : ScanLifecycle::minNodeSize;
}

void Files::showLargest() {
  showsFound_ = false;
  std::vector<ListItem> items;
  for (const FileItem& file : host_.model.shown().findings().largestFiles) {
    items.push_back(itemOf(file.path, file.size, file.modified));
  }
  const bool hasNone = items.empty() && host_.model.shown().hasFindings();
  largest_.assign(std::move(items),
                  {.text = hasNone ? FindingText::noLargeFiles(minimum(), host_.locale) : ""});
}

// The rows of the last search stay until the new ones are there.
void Files::startSearch() {
  const SharedSnapshot snapshot = host_.model.shown().snapshot();
  if (!snapshot) return;
  const auto look = [snapshot, query = *query_, now = host_.desktop.clock.now()] {
    Found found;
    const auto& kinds = FileKinds::ofThisSystem();
    for (SearchResult& each : search(*snapshot, query, kinds, now, shownAtMost, &found.count)) {
      const Node& node = *each.node;
      found.items.push_back({std::move(each.path), node.size, node.modified, node.isDirectory});
    }
    return found;
  };
  host_.desktop.tasks.run(Tasks::Priority::userInitiated, this, look,
                          [this, number = searches_](Found found) {
                            if (number == searches_) show(std::move(found));
                          });
}

void Files::show(Found found) {
  showsFound_ = true;
  std::vector<ListItem> items;
  for (const Found::Item& each : found.items) {
    items.push_back(itemOf(each.path, each.size, each.modified));
    items.back().isDirectory = each.isDirectory;
    items.back().showsChevron = each.isDirectory;
  }
  const auto count = static_cast<std::int64_t>(found.count);
  const std::string number = groupedNumber(count, host_.locale);
  status_ = ShownText::plain(
      found.count > shownAtMost
          ? i18n("{count} found, the largest {shown} are shown",
                 {{"count", number}, {"shown", groupedNumber(std::ssize(items), host_.locale)}})
          : i18np("1 found", "{count} found", count, {{"count", number}}));
  largest_.assign(std::move(items),
                  {.text = count == 0 ? FindingText::nothingFound(minimum(), host_.locale) : ""});
  Q_EMIT changed();
}

ListItem Files::itemOf(const std::string& path, Bytes size, const std::optional<Date>& modified) const {
  return {.id = path, .path = path, .size = size, .subtitle = subtitleOf(path, modified), .canTrash = true};
}

// The age and the folder, and what a removal frees if that is less than the size.
std::string Files::subtitleOf(const std::string& path, const std::optional<Date>& modified) const {
  const Date now = host_.desktop.clock.now();
  // A date to come says nothing about the age.
  const bool hasAge = modified && *modified <= now;
  const auto& freed = host_.model.shown().findings().freesAtMost;
  const auto found = freed.find(path);
  return facts({found == freed.end() ? "" : FindingText::freesAtMost(found->second, host_.locale),
                hasAge ? RelativeTime::string(*modified, now, ShownText::wordsLocale) : "",
                FolderText::place(path, host_)});
}

QStringList Files::kinds() const {
  QStringList titles;
  for (const KindTotal& total : host_.model.shown().findings().kinds)
    titles << ShownText::plain(i18n(rowOf(total.kind).title));
  return titles;
}

QStringList Files::kindSizes() const {
  QStringList sizes;
  for (const KindTotal& total : host_.model.shown().findings().kinds) {
    sizes << ShownText::plain(ByteFormat::string(total.size, host_.locale));
  }
  return sizes;
}

QList<double> Files::kindShares() const {
  QList<double> shares;
  const SharedSnapshot& snapshot = host_.model.shown().snapshot();
  for (const KindTotal& total : host_.model.shown().findings().kinds) {
    shares << ShownText::share(total.size, snapshot ? snapshot->root.size : 0);
  }
  return shares;
}

int Files::kind() const {
  if (!query_ || !query_->kind) return -1;
  const auto& all = host_.model.shown().findings().kinds;
  const auto found = std::ranges::find(all, *query_->kind, &KindTotal::kind);
  return found != all.end() ? static_cast<int>(found - all.begin()) : -1;
}

void Files::chooseKind(int index) {
  const auto& all = host_.model.shown().findings().kinds;
  if (index < 0 || index >= static_cast<int>(all.size())) return;
  const std::string_view word = rowOf(all[static_cast<std::size_t>(index)].kind).word;
  setCondition("type:", index == kind() ? "" : word);
}

QStringList Files::ages() const {
  QStringList titles;
  for (const AgeChoice& choice : ageChoices) titles << ShownText::plain(i18n(choice.title));
  if (!offeredAge()) titles << ShownText::plain(i18n("Another age"));
  return titles;
}

// The choice for the age in the search; absent for another age.
std::optional<std::size_t> Files::offeredAge() const {
  if (!query_) return 0;
  for (std::size_t i = 0; i < ageChoices.size(); ++i) {
    const std::string words = withCondition("", "older:", ageChoices.at(i).value);
    if (parseSearch(words)->olderThan == query_->olderThan) return i;
  }
  return std::nullopt;
}

int Files::age() const {
  return static_cast<int>(offeredAge().value_or(ageChoices.size()));
}

void Files::chooseAge(int index) {
  if (index < 0 || index >= static_cast<int>(ageChoices.size())) return;
  setCondition("older:", ageChoices.at(static_cast<std::size_t>(index)).value);
}

void Files::setCondition(std::string_view condition, std::string_view value) {
  host_.model.setFileSearch(withCondition(host_.model.fileSearch(), condition, value));
}

}  // namespace spacemint
