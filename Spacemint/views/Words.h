#pragma once

#include <QObject>
#include <QQmlEngine>

namespace spacemint {

/// A text as a property.
#define SPACEMINT_WORD(name, text)            \
  Q_PROPERTY(QString name READ name CONSTANT) \
 public:                                      \
  static QString name() {                     \
    return QStringLiteral(text);              \
  }

/// The texts of the views that never change: titles, buttons, tool tips, and the names of controls for screen
/// readers.
class Words : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_SINGLETON
  // Buttons and tool tips of several views.
  SPACEMINT_WORD(back, "Back")
  SPACEMINT_WORD(cancel, "Cancel")
  SPACEMINT_WORD(close, "Close")
  SPACEMINT_WORD(dismiss, "Dismiss")
  SPACEMINT_WORD(openSettings, "Open Settings")
  SPACEMINT_WORD(scanNow, "Scan now")
  SPACEMINT_WORD(settings, "Settings")
  SPACEMINT_WORD(stop, "Stop")
  /// What a spinner says.
  SPACEMINT_WORD(working, "Working")
  /// The name of the bar with the tabs.
  SPACEMINT_WORD(pages, "Pages")

  // WelcomeView and FirstScanView.
  SPACEMINT_WORD(welcomeTitle, "Never be surprised by a full disk again.")
  SPACEMINT_WORD(welcomeLine, "Spacemint watches your free space and quietly keeps track of what's using it.")
  SPACEMINT_WORD(warningPoint, "A heads-up before you run out")
  SPACEMINT_WORD(warningPointLine, "You choose the level. 20 GB free by default.")
  SPACEMINT_WORD(scansPoint, "Scans you'll never notice")
  SPACEMINT_WORD(scansPointLine, "Low priority, every few hours.")
  SPACEMINT_WORD(answersPoint, "Answers ready instantly")
  SPACEMINT_WORD(answersPointLine, "What grew, what's big, and what's safe to clean.")
  SPACEMINT_WORD(startFirstScan, "Start first scan")
  SPACEMINT_WORD(firstScanTitle, "Taking stock of your disk…")
  SPACEMINT_WORD(firstScanLine, "This first scan runs quietly and takes a few minutes.")

  // The tabs.
  SPACEMINT_WORD(growingNow, "Growing now")
  SPACEMINT_WORD(whatChanged, "What changed")
  SPACEMINT_WORD(comparedWith, "Compared with the scan of")
  SPACEMINT_WORD(whereToFree, "Where to free up space")
  SPACEMINT_WORD(showContents, "Show contents")
  SPACEMINT_WORD(notInFiles, "Not in files")
  SPACEMINT_WORD(showNotInFiles, "Show what is not in files")
  SPACEMINT_WORD(largestFiles, "Largest files")
  SPACEMINT_WORD(caches, "Leftover caches and build files")
  SPACEMINT_WORD(ollama, "Local Ollama models")
  SPACEMINT_WORD(huggingFace, "Cached Hugging Face models")
  SPACEMINT_WORD(docker, "Unused Docker data")
  SPACEMINT_WORD(worktrees, "Stale Git worktrees")
  SPACEMINT_WORD(showFewerDisks, "Show fewer disks")

  // SettingsView and UpdatesSection.
  SPACEMINT_WORD(warning, "Warning")
  SPACEMINT_WORD(warnBelow, "Warn me below")
  SPACEMINT_WORD(notifications, "Notifications")
  SPACEMINT_WORD(sendTest, "Send test")
  SPACEMINT_WORD(notificationsOff, "Turned off · Open Settings")
  SPACEMINT_WORD(backgroundScan, "Background scan")
  SPACEMINT_WORD(scan, "Scan")
  SPACEMINT_WORD(howOften, "How often")
  SPACEMINT_WORD(fileAccess, "File access")
  SPACEMINT_WORD(accessComplete, "Complete")
  SPACEMINT_WORD(general, "General")
  SPACEMINT_WORD(showIn, "Show Spacemint in")
  SPACEMINT_WORD(freeSpaceInItem, "Show free space in the status area")
  SPACEMINT_WORD(itemColour, "Colour in the status area")
  SPACEMINT_WORD(openAtLogin, "Open at login")
  SPACEMINT_WORD(shareUsage, "Share anonymous usage")
  SPACEMINT_WORD(about, "About")
  SPACEMINT_WORD(quit, "Quit Spacemint")
  SPACEMINT_WORD(updates, "Updates")
  SPACEMINT_WORD(installAutomatically, "Install updates automatically")
  SPACEMINT_WORD(install, "Install")
  SPACEMINT_WORD(checkNow, "Check now")

  // AboutCard.
  SPACEMINT_WORD(aboutLine, "Watches free space and says what takes it. Free software under the MIT licence.")

 public:
  Q_INVOKABLE static QString aboutProduct(const QString& name);
  Q_INVOKABLE static QString version(const QString& number);
  /// The title of the button that shows `count` more disks.
  Q_INVOKABLE static QString moreDisks(int count);
  /// What a screen reader says of an item with these texts; leaves out empty ones.
  Q_INVOKABLE static QString spoken(const QStringList& texts);
  /// `spoken` of an item that unfolds.
  Q_INVOKABLE static QString spokenUnfolding(const QString& text, bool isUnfolded);
};

#undef SPACEMINT_WORD

}  // namespace spacemint
