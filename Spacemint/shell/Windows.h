#pragma once

#include "Spacemint/shell/LayerShell.h"
#include "Spacemint/shell/Placement.h"
#include "core/host/DefaultsStore.h"

#include <QElapsedTimer>
#include <QQuickView>

#include <functional>

namespace spacemint {

/// A window that shows the whole interface. Main thread only.
class InterfaceWindow : public QQuickView {
  Q_OBJECT
 public:
  /// `properties` are the properties of the root object, InterfaceRoot.qml.
  InterfaceWindow(QQmlEngine& engine, const QVariantMap& properties);

  /// Called for the Escape key if nothing in the window takes it.
  std::function<void()> onCancel;
  /// Called for every other key that nothing in the window takes; returns whether the key had a meaning.
  std::function<bool(const QKeyEvent&)> onKey;

  /// Shows the card with the product's name, its version and the keys.
  void showAbout();

 protected:
  void keyPressEvent(QKeyEvent* event) override;
};

/// The panel at the status item: without a frame, above other windows, in no task bar. Main thread only.
class DropdownPanel : public InterfaceWindow {
  Q_OBJECT
 public:
  DropdownPanel(QQmlEngine& engine, QVariantMap properties);
  ~DropdownPanel() override;

  struct Look {
    bool fades = true;
    /// Only where the screen shows what is behind the transparent corners.
    bool isRounded = true;
  };

  /// Shows the panel at that place, in front of everything.
  void open(const QRect& place, Look look);
  /// The same on a Wayland screen. False, and nothing is shown, if the panel cannot be placed.
  bool open(const LayerPlacement& placement, LayerShell& layers);

 Q_SIGNALS:
  /// The panel lost the keyboard focus, as by a click into another window, or the user clicked beside it.
  void left();

 private:
  void showInFront();

  QElapsedTimer opened_;
  /// Where the panel is on a layer: exists from the first time that it is shown.
  std::unique_ptr<ClickCatcher> catcher_;
};

/// The interface as an ordinary window, which remembers its place and size. Main thread only.
class MainWindow : public InterfaceWindow {
  Q_OBJECT
 public:
  /// `defaults` stores the place of the window, and outlives the window.
  MainWindow(QQmlEngine& engine, QVariantMap properties, DefaultsStore& defaults);
  ~MainWindow() override;

  /// Shows the window in front of everything.
  void open();

 Q_SIGNALS:
  void activated();
  /// The user closed the window. It can be opened again.
  void closed();

 protected:
  bool event(QEvent* event) override;

 private:
  void placeOnScreen();
  void keepPlace();

  DefaultsStore& defaults_;
};

}  // namespace spacemint
