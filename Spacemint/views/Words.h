#pragma once

#include "Spacemint/views/ShownText.h"
#include "core/base/Translation.h"
#include "core/wording/ImportText.h"

#include <QObject>
#include <QQmlEngine>

namespace spacemint {

/// A text as a property.
#define SPACEMINT_WORD(name, text)            \
  Q_PROPERTY(QString name READ name CONSTANT) \
 public:                                      \
  static QString name() {                     \
    return ShownText::plain(text);            \
  }

/// The texts of the views that never change: titles, buttons, tool tips, and the names of controls for screen
/// readers.
class Words : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_SINGLETON
  // Buttons and tool tips of several views.
  SPACEMINT_WORD(back, i18nc("button", "Back"))
  SPACEMINT_WORD(cancel, i18n("Cancel"))
  SPACEMINT_WORD(close, i18nc("button", "Close"))
  SPACEMINT_WORD(dismiss, i18nc("button", "Dismiss"))
  SPACEMINT_WORD(openSettings, i18n("Open Settings"))
  SPACEMINT_WORD(scanNow, i18n("Scan now"))
  SPACEMINT_WORD(settings, i18n("Settings"))
  SPACEMINT_WORD(stop, i18nc("button", "Stop"))
  /// What a spinner says.
  SPACEMINT_WORD(working, i18nc("a spinner", "Working"))
  /// The name of the bar with the tabs.
  SPACEMINT_WORD(pages, i18nc("the tabs", "Pages"))

  SPACEMINT_WORD(showWhatToFree, i18n("Show what to free"))

  // SourceCard.
  SPACEMINT_WORD(onlyShown, ImportText::notice())
  SPACEMINT_WORD(backToHere, i18n("Back to this computer"))

  // The large window.
  SPACEMINT_WORD(findInScan, i18n("Find in this scan"))
  /// The name of the control that chooses what the colours of a map mean.
  SPACEMINT_WORD(colours, i18n("Colours"))

  /// The border between the list and the map.
  SPACEMINT_WORD(listWidth, i18n("Width of the list"))

  // WelcomeView and FirstScanView.
  SPACEMINT_WORD(welcomeTitle, i18n("Never be surprised by a full disk again."))
  SPACEMINT_WORD(welcomeLine,
                 i18n("Spacemint watches your free space and quietly keeps track of what's using it."))
  SPACEMINT_WORD(warningPoint, i18n("A heads-up before you run out"))
  SPACEMINT_WORD(warningPointLine, i18n("You choose the level. 20 GB free by default."))
  SPACEMINT_WORD(scansPoint, i18n("Scans you'll never notice"))
  SPACEMINT_WORD(scansPointLine, i18n("Low priority, every few hours."))
  SPACEMINT_WORD(answersPoint, i18n("Answers ready instantly"))
  SPACEMINT_WORD(answersPointLine, i18n("What grew, what's big, and what's safe to clean."))
  SPACEMINT_WORD(startFirstScan, i18n("Start first scan"))
  SPACEMINT_WORD(firstScanTitle, i18n("Taking stock of your disk…"))
  SPACEMINT_WORD(foundSoFar, i18n("Found so far"))
  SPACEMINT_WORD(firstScanLeave, i18n("You can leave; the scan goes on."))
  SPACEMINT_WORD(firstScanLine, i18n("This first scan runs quietly and takes a few minutes."))

  // The tabs.
  SPACEMINT_WORD(growingNow, i18n("Growing now"))
  SPACEMINT_WORD(whatChanged, i18n("What changed"))
  SPACEMINT_WORD(comparedWith, i18n("Compared with the scan of"))
  SPACEMINT_WORD(whereToFree, i18n("Where to free up space"))
  SPACEMINT_WORD(showContents, i18n("Show contents"))
  SPACEMINT_WORD(notInFiles, i18n("Not in files"))
  SPACEMINT_WORD(showNotInFiles, i18n("Show what is not in files"))
  SPACEMINT_WORD(order, i18n("Order"))
  SPACEMINT_WORD(search, i18n("Find files and folders"))
  SPACEMINT_WORD(searchExample, i18n("Find: holiday, *.iso, >1GB, type:video"))
  SPACEMINT_WORD(age, i18n("Age"))
  SPACEMINT_WORD(removeMarked, i18n("Remove…"))
  SPACEMINT_WORD(unmark, i18n("Select nothing"))
  SPACEMINT_WORD(caches, i18n("Leftover caches and build files"))
  SPACEMINT_WORD(ollama, i18n("Local Ollama models"))
  SPACEMINT_WORD(huggingFace, i18n("Cached Hugging Face models"))
  SPACEMINT_WORD(docker, i18n("Unused Docker data"))
  SPACEMINT_WORD(worktrees, i18n("Stale Git worktrees"))
  SPACEMINT_WORD(showFewerDisks, i18n("Show fewer disks"))

  // SettingsView and UpdatesSection.
  SPACEMINT_WORD(warning, i18nc("settings", "Warning"))
  SPACEMINT_WORD(warnBelow, i18n("Warn me below"))
  SPACEMINT_WORD(notifications, i18n("Notifications"))
  SPACEMINT_WORD(sendTest, i18n("Send test"))
  SPACEMINT_WORD(notificationsOff, i18n("Turned off · Open Settings"))
  SPACEMINT_WORD(backgroundScan, i18n("Background scan"))
  SPACEMINT_WORD(scan, i18nc("settings: what to scan", "Scan"))
  SPACEMINT_WORD(howOften, i18n("How often"))
  SPACEMINT_WORD(fileAccess, i18n("File access"))
  SPACEMINT_WORD(accessComplete, i18nc("file access", "Complete"))
  SPACEMINT_WORD(leftOut, i18n("Left out of scans"))
  SPACEMINT_WORD(
      leftOutLine,
      i18n("A name stands for all files and folders of this name, * for any text, and a path for one "
           "folder. A change applies from the next scan on."))
  SPACEMINT_WORD(leftOutExample, i18n("node_modules, *.iso or ~/VMs"))
  SPACEMINT_WORD(add, i18nc("button", "Add"))
  SPACEMINT_WORD(general, i18nc("settings", "General"))
  SPACEMINT_WORD(showIn, i18n("Show Spacemint in"))
  SPACEMINT_WORD(freeSpaceInItem, i18n("Show free space in the status area"))
  SPACEMINT_WORD(itemColour, i18n("Colour in the status area"))
  SPACEMINT_WORD(openAtLogin, i18n("Open at login"))
  SPACEMINT_WORD(shareUsage, i18n("Share anonymous usage"))
  SPACEMINT_WORD(about, i18nc("button", "About"))
  SPACEMINT_WORD(quit, i18n("Quit Spacemint"))
  SPACEMINT_WORD(updates, i18nc("settings", "Updates"))
  SPACEMINT_WORD(installAutomatically, i18n("Install updates automatically"))
  SPACEMINT_WORD(install, i18nc("button", "Install"))
  SPACEMINT_WORD(checkNow, i18n("Check now"))

  // AboutCard.
  SPACEMINT_WORD(aboutLine,
                 i18n("Watches free space and says what takes it. Free software under the MIT licence."))

 public:
  Q_INVOKABLE static QString aboutProduct(const QString& name);
  Q_INVOKABLE static QString version(const QString& number);
  /// The title of the button that shows `count` more disks.
  Q_INVOKABLE static QString moreDisks(int count);
  /// What a screen reader says of an item with these texts; leaves out empty ones.
  Q_INVOKABLE static QString spoken(const QStringList& texts);
  /// `spoken` of an item that unfolds.
  Q_INVOKABLE static QString spokenUnfolding(const QString& text, bool isUnfolded);
  /// What a bar shows: "33 %". Empty for no bar and for an empty one.
  Q_INVOKABLE static QString share(double fraction);
};

#undef SPACEMINT_WORD

}  // namespace spacemint
