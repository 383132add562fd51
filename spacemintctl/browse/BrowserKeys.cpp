#include "core/base/Translation.h"
#include "spacemintctl/Console.h"
#include "spacemintctl/browse/BrowseText.h"
#include "spacemintctl/browse/Browser.h"

#include <algorithm>

namespace spacemint::ctl {

namespace {

// Appends the text of a key to what was typed.
void append(std::string& text, char32_t character) {
  if (character < 0x80) {
    text += static_cast<char>(character);
    return;
  }
  const auto part = [&](unsigned shift, unsigned mark, unsigned mask) {
    text += static_cast<char>(mark | ((character >> shift) & mask));
  };
  if (character < 0x800) {
    part(6, 0xc0, 0x1f);
  } else {
    if (character < 0x10000) {
      part(12, 0xe0, 0x0f);
    } else {
      part(18, 0xf0, 0x07);
      part(12, 0x80, 0x3f);
    }
    part(6, 0x80, 0x3f);
  }
  part(0, 0x80, 0x3f);
}

void removeLastCharacter(std::string& text) {
  while (!text.empty() && (static_cast<unsigned char>(text.back()) & 0xc0U) == 0x80U) text.pop_back();
  if (!text.empty()) text.pop_back();
}

}  // namespace

void Browser::say(std::string message, bool isWarning) {
  message_ = std::move(message);
  view_.footerStyle = isWarning ? Style::warning : Style::strong;
}

void Browser::ask(Popup popup, Choose choose) {
  view_.popup = std::move(popup);
  choose_ = std::move(choose);
}

void Browser::askFor(Popup popup, Enter enter) {
  view_.popup = std::move(popup);
  enter_ = std::move(enter);
}

void Browser::closePopup() {
  view_.popup.reset();
  choose_ = {};
  enter_ = {};
}

void Browser::pressInPopup(const Key& key) {
  using Kind = Key::Kind;
  Popup& popup = *view_.popup;
  if (popup.input) {
    if (key.kind == Kind::escape) return closePopup();
    if (key.kind == Kind::backspace) return removeLastCharacter(*popup.input);
    if (key.kind == Kind::character) return append(*popup.input, key.character);
    if (key.kind != Kind::enter) return;
    const std::string text = *popup.input;
    const Enter enter = std::move(enter_);
    closePopup();
    return enter(text);
  }
  if (stopRemoval_) {
    if (key.kind == Kind::escape || key.is('q')) *stopRemoval_ = true;
    return;
  }
  const bool isUp = key.kind == Kind::up || key.kind == Kind::wheelUp || key.is('k');
  const bool isDown = key.kind == Kind::down || key.kind == Kind::wheelDown || key.is('j');
  if (popup.choices.empty()) {
    if (isDown || key.kind == Kind::pageDown) {
      popup.firstLine = std::min(popup.firstLine + (isDown ? 1 : 10), popup.text.size());
    } else if (isUp || key.kind == Kind::pageUp) {
      popup.firstLine -= std::min<std::size_t>(popup.firstLine, isUp ? 1 : 10);
    } else if (key.kind != Kind::other && key.kind != Kind::click) {
      closePopup();
    }
    return;
  }
  if (isUp && popup.chosen > 0) --popup.chosen;
  if (isDown && popup.chosen + 1 < popup.choices.size()) ++popup.chosen;
  if (key.kind == Kind::escape || key.is('q') || key.is('n')) return closePopup();
  if (key.kind != Kind::enter) return;
  const std::size_t chosen = popup.chosen;
  const Choose choose = std::move(choose_);
  closePopup();
  choose(chosen);
}

void Browser::askWhetherToQuit() {
  if (hasScan_ || !isScanning()) {
    hasEnded_ = true;
    return;
  }
  Popup popup = box(i18n("The scan is not finished"), {}, i18n("Enter choose   Esc go on scanning"));
  popup.choices = {i18n("Keep what is measured so far"), i18n("Quit"), i18n("Go on scanning")};
  ask(std::move(popup), [this](std::size_t choice) {
    if (choice == 0 && scanning_) scanning_->stopAndKeep();
    if (choice == 1) hasEnded_ = true;
  });
}

void Browser::click(const Key& key, const ScreenSize& size) {
  if (key.row == 0) return back();
  if (const auto order = headAt(view_, size, key.row, key.column)) return orderBy(*order);
  const auto row = rowAt(view_, size, key.row);
  if (!row) return;
  if (*row == view_.cursor) return open();
  view_.cursor = *row;
}

void Browser::press(const Key& key, const ScreenSize& size) {
  using Kind = Key::Kind;
  view_.now = currentTime();
  if (view_.popup) return pressInPopup(key);
  if (key.kind != Kind::other) message_.clear();
  const auto page = static_cast<std::ptrdiff_t>(visibleRows(size));
  constexpr std::ptrdiff_t all = 1'000'000'000;
  switch (key.kind) {
    case Kind::up:
      return move(-1);
    case Kind::down:
      return move(1);
    case Kind::pageUp:
      return move(-page);
    case Kind::pageDown:
      return move(page);
    case Kind::home:
      return move(-all);
    case Kind::end:
      return move(all);
    case Kind::wheelUp:
      return move(-3);
    case Kind::wheelDown:
      return move(3);
    case Kind::right:
    case Kind::enter:
      return open();
    case Kind::left:
    case Kind::backspace:
      return back();
    case Kind::escape:
      return page_ == Page::folder ? void() : leavePage();
    case Kind::remove:
      return askRemoval();
    case Kind::click:
      return click(key, size);
    case Kind::other:
      return;
    case Kind::character:
      break;
  }
  switch (key.character) {
    case 'k':
      return move(-1);
    case 'j':
      return move(1);
    case 'l':
      return open();
    case 'h':
    case '<':
      return back();
    case 's':
      return orderBy(RowKey::size);
    case 'n':
      return orderBy(RowKey::name);
    case 'C':
      return orderBy(RowKey::count);
    case 'M':
      return orderBy(RowKey::age);
    case 'G':
      return orderBy(RowKey::growth);
    case 't':
      view_.order.foldersFirst = !view_.order.foldersFirst;
      return setRows(std::move(view_.rows), "");
    case 'g':
      view_.share = static_cast<ShareColumn>((static_cast<unsigned>(view_.share) + 1) % 4);
      return;
    case '.':
      hidesDotNames_ = !hidesDotNames_;
      return page_ == Page::folder ? updateRows() : void();
    case 'a':
      return say(i18n("Sizes are space on the disk; \"i\" shows the length of a file."));
    case 'i':
      return showInfo();
    case ' ':
      return mark();
    case 'u':
      return marked_.clear();
    case 'd':
      return askRemoval();
    case 'c':
      return showCleanable();
    case 'b':
      return chooseBaseline();
    case 'r':
      return measureFolderAgain();
    case '?':
      return ask(box(i18n("Keys"), BrowseText::help(), i18n("any key: back")), {});
    case '/': {
      if (!hasScan_) return say(i18n("Let the scan end first; then its files can be searched."));
      Popup popup =
          box(i18n("Search"), {{i18n("Part of a name, *.iso, >1GB, <10MB, older:1y, newer:2w, type:video")}},
              i18n("Enter search   Esc leave"));
      popup.input.emplace();
      return askFor(std::move(popup), [this](const std::string& text) { search(text); });
    }
    case '!':
      if (mayMeasure()) shellFolder_ = folder_;
      return;
    case 'e': {
      if (!hasScan_) return say(i18n("Let the scan end first; then it can be exported."));
      Popup popup = box(i18n("Export the scan to"), {}, i18n("Enter write   Esc leave"));
      popup.input = "~/spacemint-" + localTime(tree_.scan().date).substr(0, 10) + ".json";
      return askFor(std::move(popup), [this](const std::string& file) { exportTo(file); });
    }
    case 'q':
      return askWhetherToQuit();
    default:
      return;
  }
}

}  // namespace spacemint::ctl
