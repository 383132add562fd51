#pragma once

#include "Spacemint/shell/InterfaceWindow.h"

namespace spacemint {

/// The panel under the status item: without a frame, above other windows, in no task bar. Main thread only.
class DropdownPanel : public InterfaceWindow {
  Q_OBJECT
 public:
  DropdownPanel(QQmlEngine& engine, QVariantMap properties);
  ~DropdownPanel() override;

  /// Shows it at that place in front of everything, fading in where `fades`.
  void open(const QRect& place, bool fades);

 Q_SIGNALS:
  /// The keyboard went elsewhere, as by a click beside the panel.
  void left();
};

}  // namespace spacemint
