#pragma once

#include <QObject>

namespace spacemint {

/// The desktop's settings for how applications look. Main thread only.
class Appearance : public QObject {
  Q_OBJECT
 public:
  ~Appearance() override;

  /// Asks the desktop and follows its changes from now on. Until it answers, all values are guesses. Does not
  /// block.
  virtual void follow() = 0;

  /// Whether the desktop is dark: light text on a dark ground.
  virtual bool isDark() const = 0;
  /// Whether the status area is dark, also where windows are light. A guess: no desktop tells.
  virtual bool isStatusAreaDark() const = 0;
  /// Whether animations are to be left out.
  virtual bool reducedMotion() const = 0;
  /// Whether the screen shows what is behind transparent parts of a window. Asks at each call, because it can
  /// change without a signal.
  virtual bool hasTransparency() const = 0;

 Q_SIGNALS:
  void changed();
};

}  // namespace spacemint
