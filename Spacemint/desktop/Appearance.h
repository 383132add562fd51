#pragma once

#include <QObject>

namespace spacemint {

/// What the desktop wants things to look like. Main thread only.
class Appearance : public QObject {
  Q_OBJECT
 public:
  ~Appearance() override;

  /// Begins to ask the desktop, and follows what it says. Until it answers the best guess serves.
  virtual void follow() = 0;

  /// Light text on a dark ground.
  virtual bool isDark() const = 0;
  /// The status area is dark, whatever the windows are.
  virtual bool isStatusAreaDark() const = 0;
  /// Nothing is to move that need not.
  virtual bool reducedMotion() const = 0;
  /// What is behind a window shows where it is transparent. It is looked up anew, as it may change at any time.
  virtual bool hasTransparency() const = 0;

 Q_SIGNALS:
  void changed();
};

}  // namespace spacemint
