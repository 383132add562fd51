#pragma once

#include "Spacemint/shell/InterfaceWindow.h"

#include <QElapsedTimer>

namespace spacemint {

/// The panel under the status item: without a frame, above other windows, in no task bar. Main thread only.
class DropdownPanel : public InterfaceWindow {
  Q_OBJECT
 public:
  DropdownPanel(QQmlEngine& engine, QVariantMap properties);
  ~DropdownPanel() override;

  struct Look {
    bool fades = true;
    /// Only where what is behind the corners can be seen.
    bool isRounded = true;
  };

  /// Shows it at that place in front of everything.
  void open(const QRect& place, Look look);

 Q_SIGNALS:
  /// The keyboard went elsewhere, as by a click beside the panel.
  void left();

 private:
  QElapsedTimer opened_;
};

}  // namespace spacemint
