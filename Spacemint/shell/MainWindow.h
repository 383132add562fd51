#pragma once

#include "Spacemint/shell/InterfaceWindow.h"
#include "core/host/DefaultsStore.h"

namespace spacemint {

/// The interface as an ordinary window, which comes back to where it was. Main thread only.
class MainWindow : public InterfaceWindow {
  Q_OBJECT
 public:
  /// The store keeps where the window is, and outlives it.
  MainWindow(QQmlEngine& engine, QVariantMap properties, DefaultsStore& defaults);
  ~MainWindow() override;

  /// Shows it in front of everything.
  void open();

 Q_SIGNALS:
  void activated();
  /// The user closed it; it can be opened again.
  void closed();

 protected:
  bool event(QEvent* event) override;

 private:
  void placeOnScreen();
  void keepPlace();

  DefaultsStore& defaults_;
};

}  // namespace spacemint
