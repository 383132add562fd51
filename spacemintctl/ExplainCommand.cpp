#include "spacemintctl/ExplainCommand.h"

#include "core/base/ByteFormat.h"
#include "core/base/RelativeTime.h"
#include "core/base/Translation.h"
#include "core/host/UserFolders.h"
#include "core/wording/AccountText.h"
#include "spacemintctl/Answer.h"
#include "spacemintctl/Console.h"
#include "spacemintctl/Interrupt.h"
#include "spacemintctl/ScanCommand.h"
#include "spacemintctl/ScanRoot.h"
#include "spacemintctl/Section.h"
#include "spacemintctl/StoredScan.h"

#include <algorithm>
#include <cctype>
#include <utility>

namespace spacemint::ctl {

namespace {

using Line = AccountLine;

// How many of the paths and programs of a line are shown as text.
constexpr std::size_t shownDetails = 10;

Json optionalSize(std::optional<Bytes> size) {
  return size ? Json(*size) : Json(nullptr);
}

Json detailJson(const Line::Detail& detail) {
  Json object{{"name", jsonText(detail.title)}};
  if (detail.size) object["size"] = *detail.size;
  return object;
}

Json lineJson(const Line& line) {
  Json object{
      {"part", AccountText::keyOf(line.part)}, {"title", line.title}, {"size", optionalSize(line.size)}};
  if (line.part == AccountPart::deleted || line.details.empty()) return object;
  object["items"] = Json::array();
  for (const Line::Detail& detail : line.details) object["items"].push_back(detailJson(detail));
  return object;
}

Json heldJson(const HeldFiles& held) {
  Json programs = Json::array();
  for (const std::string& name : held.programs) programs.push_back(jsonText(name));
  return {{"programs", std::move(programs)}, {"pids", held.pids}, {"files", held.count}, {"size", held.size}};
}

Json accountJson(const Account& account, const std::vector<Line>& lines) {
  const Space& space = account.space;
  Json object{{"name", jsonText(account.volume.name)},
              {"mountPoint", jsonText(account.volume.mountPoint())},
              {"fileSystem", account.volume.fileSystem},
              {"total", space.total},
              {"used", space.used},
              {"heldBack", space.heldBack},
              {"free", space.free},
              {"scan",
               {{"date", universalTime(account.scanned.date)},
                {"root", jsonText(account.scanned.root)},
                {"isWhole", account.scanned.isWhole}}},
              {"parts", Json::array()},
              {"held", Json::array()},
              {"refusedPrograms", account.refusedPrograms},
              {"causes", Json::array()}};
  for (const Line& line : lines) object["parts"].push_back(lineJson(line));
  for (const HeldFiles& held : account.held) object["held"].push_back(heldJson(held));
  for (const RestCause cause : account.causes()) object["causes"].push_back(AccountText::keyOf(cause));
  return object;
}

// A note after a colon. Other languages keep their capitals there.
std::string withoutCapital(std::string text) {
  if (sentenceLanguage() == "en" && !text.empty())
    text.front() = static_cast<char>(std::tolower(static_cast<unsigned char>(text.front())));
  return text;
}

class AccountTable {
 public:
  explicit AccountTable(std::string locale) : locale_(std::move(locale)) {}

  void add(const Line& line) {
    row(line.size, line.note.empty() ? line.title
                                     : i18n("{title}: {note}",
                                            {{"title", line.title}, {"note", withoutCapital(line.note)}}));
    const std::size_t shown = std::min(line.details.size(), shownDetails);
    for (std::size_t i = 0; i < shown; ++i) {
      const Line::Detail& detail = line.details[i];
      row(detail.size, "  " + printable(detail.title) + (detail.note.empty() ? "" : ", " + detail.note));
    }
    if (shown < line.details.size()) row({}, "  …");
  }
  void addSum(Bytes size, const std::string& title) { row(size, title); }
  std::string text() const { return table_.text(); }

 private:
  void row(std::optional<Bytes> size, const std::string& text) {
    table_.add({size ? ByteFormat::string(*size, locale_) : "", text});
  }

  std::string locale_;
  Table table_{1};
};

std::string accountText(const Account& account, const std::vector<Line>& lines, const Wording& wording) {
  const Volume& volume = account.volume;
  const std::string text =
      i18n("{volume} ({place}, {fileSystem}), by the scan of {root}, {age}",
           {{"volume", printable(volume.name)},
            {"place", printable(volume.mountPoint())},
            {"fileSystem", printable(volume.fileSystem)},
            {"root", printable(Paths::display(account.scanned.root, wording.home))},
            {"age", RelativeTime::string(account.scanned.date, currentTime(), wording.locale)}}) +
      '\n';
  AccountTable table{wording.locale};
  for (const Line& line : lines) {
    if (line.part == AccountPart::heldBack || line.part == AccountPart::free) continue;
    table.add(line);
  }
  table.addSum(account.space.used, i18n("Used"));
  for (const Line& line : lines) {
    if (line.part == AccountPart::heldBack || line.part == AccountPart::free) table.add(line);
  }
  table.addSum(account.space.total, i18n("Total"));
  return text + table.text();
}

// The newest stored scan of the whole volume; without one, the newest of a folder on it.
std::optional<Snapshot> storedScanOf(const Volume& volume) {
  std::optional<Snapshot> ofPart;
  for (const SnapshotStore::Entry& entry : storedScans()) {
    auto snapshot = SnapshotStore{}.load(entry);
    if (!snapshot) continue;
    const auto scanned = scannedVolume(*snapshot, volume);
    if (!scanned) continue;
    if (scanned->isWhole) return std::move(*snapshot);
    if (!ofPart) ofPart = std::move(*snapshot);
  }
  return ofPart;
}

std::optional<Snapshot> measuredScanOf(const Volume& volume) {
  noteInterrupts();
  return measuredScan({.path = volume.mountPoint()});
}

int fail(const std::string& message) {
  complain(message);
  return failed;
}

}  // namespace

int runExplain(const ExplainOptions& options) {
  const auto path = scanRoot(options.path);
  if (!path) return fail(printable(path.error().message));
  auto facts = readVolumeFacts(*path);
  if (!facts)
    return fail(i18n("{path}: its volume could not be read, or is on no disk of this computer",
                     {{"path", printable(*path)}}));
  auto scan = options.fresh ? std::nullopt : storedScanOf(facts->volume);
  if (!scan) scan = measuredScanOf(facts->volume);
  if (!scan)
    return wasInterrupted() ? interrupted
                            : fail(i18n("{path}: could not be scanned", {{"path", printable(*path)}}));
  auto scanned = scannedVolume(*scan, facts->volume);
  if (!scanned) return fail(i18n("{path}: the scan has nothing of its volume", {{"path", printable(*path)}}));
  facts->saved = savedBytes(*scan, facts->volume);
  const Account account = accountOf(std::move(*facts), std::move(*scanned));
  const Wording wording{.home = UserFolders::home(), .locale = userLocale()};
  const auto lines = AccountText::lines(account, wording.home, wording.locale, currentTime());
  return print(options.json ? accountJson(account, lines).dump() + '\n'
                            : accountText(account, lines, wording))
             ? done
             : failed;
}

}  // namespace spacemint::ctl
