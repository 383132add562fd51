#pragma once

#include "Spacemint/views/UiHost.h"

#include <QQmlEngine>
#include <QStringList>

namespace spacemint {

/// The page that is shown, and its message. Main thread only.
class Page : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("a part of the interface's model")
  Q_PROPERTY(State state READ state NOTIFY stateChanged)
  /// The current tab, as a place among all tabs.
  Q_PROPERTY(int tab READ tab WRITE setTab NOTIFY tabChanged)
  /// The tabs of the scan that is shown, and the place of the current one among them.
  Q_PROPERTY(QStringList tabTitles READ tabTitles NOTIFY tabsChanged)
  Q_PROPERTY(QStringList tabSymbols READ tabSymbols NOTIFY tabsChanged)
  Q_PROPERTY(int tabIndex READ tabIndex WRITE setTabIndex NOTIFY tabChanged)
  Q_PROPERTY(bool showingSettings READ showingSettings WRITE setShowingSettings NOTIFY showingSettingsChanged)
  Q_PROPERTY(bool hasAccess READ hasAccess NOTIFY hasAccessChanged)
  Q_PROPERTY(QString accessTitle READ accessTitle NOTIFY hasAccessChanged)
  Q_PROPERTY(QString accessLine READ accessLine NOTIFY hasAccessChanged)
  Q_PROPERTY(QString message READ message NOTIFY messageChanged)
  /// The title of the message's button; empty if it has none.
  Q_PROPERTY(QString messageAction READ messageAction NOTIFY messageChanged)
 public:
  // QML can only read enumerators that start with a capital letter.
  enum class State { Welcome, FirstScan, Tabs };
  Q_ENUM(State)

  explicit Page(const UiHost& host);

  /// The page that follows from the scans: before, during and after the first one.
  static State stateOf(bool hasSnapshot, bool isScanning);

  State state() const;
  int tab() const { return static_cast<int>(host_.model.tab()); }
  void setTab(int tab);
  QStringList tabTitles() const;
  QStringList tabSymbols() const;
  int tabIndex() const;
  void setTabIndex(int index);
  bool showingSettings() const { return host_.model.showingSettings(); }
  void setShowingSettings(bool isShowing) { host_.model.setShowingSettings(isShowing); }
  bool hasAccess() const { return host_.model.hasFullDiskAccess(); }
  QString accessTitle() const;
  /// What that means for the sizes.
  QString accessLine() const;
  QString message() const;
  QString messageAction() const;

  Q_INVOKABLE void begin() const { host_.model.begin(); }
  Q_INVOKABLE void openAccessSettings() const;
  Q_INVOKABLE void performMessageAction() const { host_.model.messages().performAction(); }
  /// Shows the tab with what can be freed.
  Q_INVOKABLE void showWhatToFree();
  Q_INVOKABLE void dismissMessage() const { host_.model.messages().clear(); }

 Q_SIGNALS:
  void whatToFreeWanted();
  void stateChanged();
  void tabChanged();
  void tabsChanged();
  void showingSettingsChanged();
  void hasAccessChanged();
  void messageChanged();

 private:
  const UiHost& host_;
};

}  // namespace spacemint
