#include "Spacemint/views/Page.h"

#include "Spacemint/views/ShownText.h"
#include "core/base/PlatformWords.h"
#include "core/base/Translation.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace spacemint {

Page::Page(const UiHost& host) : host_(host) {
  AppModel& model = host_.model;
  connect(&model.shown(), &ShownScan::snapshotChanged, this, &Page::stateChanged);
  connect(&model.shown(), &ShownScan::sourceChanged, this, &Page::tabsChanged);
  connect(&model.shown(), &ShownScan::sourceChanged, this, &Page::tabChanged);
  connect(&model.scans(), &ScanLifecycle::progressChanged, this, &Page::stateChanged);
  connect(&model, &AppModel::tabChanged, this, &Page::tabChanged);
  connect(&model, &AppModel::showingSettingsChanged, this, &Page::showingSettingsChanged);
  connect(&model, &AppModel::hasFullDiskAccessChanged, this, &Page::hasAccessChanged);
  connect(&model.messages(), &Messages::changed, this, &Page::messageChanged);
}

Page::State Page::stateOf(bool hasSnapshot, bool isScanning) {
  if (hasSnapshot) return State::Tabs;
  return isScanning ? State::FirstScan : State::Welcome;
}

Page::State Page::state() const {
  return stateOf(host_.model.shown().snapshot() != nullptr, host_.model.scans().isScanning());
}

void Page::setTab(int tab) {
  if (tab < 0 || tab >= static_cast<int>(allTabs.size())) return;
  host_.model.setTab(allTabs[static_cast<std::size_t>(tab)]);
}

QStringList Page::tabTitles() const {
  QStringList titles;
  for (const Tab tab : host_.model.tabs()) titles << ShownText::plain(titleOf(tab));
  return titles;
}

QStringList Page::tabSymbols() const {
  static const std::array symbols{QStringLiteral("safari"), QStringLiteral("folder"), QStringLiteral("doc"),
                                  QStringLiteral("hammer")};
  QStringList shown;
  for (const Tab tab : host_.model.tabs()) shown << symbols.at(static_cast<std::size_t>(tab));
  return shown;
}

int Page::tabIndex() const {
  const auto tabs = host_.model.tabs();
  return static_cast<int>(std::ranges::find(tabs, host_.model.tab()) - tabs.begin());
}

void Page::setTabIndex(int index) {
  const auto tabs = host_.model.tabs();
  if (index >= 0 && index < std::ssize(tabs)) host_.model.setTab(tabs[static_cast<std::size_t>(index)]);
}

QString Page::accessTitle() const {
  return ShownText::plain(
      i18n(hasAccess() ? PlatformWords::accessIsComplete : PlatformWords::foldersAreClosed));
}

QString Page::accessLine() const {
  return ShownText::plain(hasAccess() ? i18n("Spacemint can see your whole disk.")
                                      : i18n("Some sizes will be too small."));
}

void Page::showWhatToFree() {
  setTab(static_cast<int>(Tab::overview));
  Q_EMIT whatToFreeWanted();
}

QString Page::message() const {
  return ShownText::withQuotes(ShownText::sentence(host_.model.messages().message().value_or("")));
}

QString Page::messageAction() const {
  const auto& action = host_.model.messages().action();
  return action ? ShownText::plain(action->title) : QString{};
}

void Page::openAccessSettings() const {
  host_.desktop.opener.openSettings(Opener::SettingsPage::fullDiskAccess);
}

}  // namespace spacemint
