#pragma once

#include "AppServices/AppServices.h"
#include "Spacemint/shell/DropdownPanel.h"
#include "Spacemint/shell/MainWindow.h"
#include "Spacemint/views/Ui.h"

#include <QQmlEngine>

#include <memory>

namespace spacemint {

/// What an interface stands on. All of it outlives it.
struct InterfaceHost {
  UiHost ui;
  AppServices& services;
  DefaultsStore& defaults;
};

/// All that is there only for the eye: the engine, the views' objects and the two windows, each made when it
/// is first asked for. Destroying it gives the memory back. Main thread only.
class Interface : public QObject {
  Q_OBJECT
 public:
  explicit Interface(InterfaceHost host);
  ~Interface() override;

  DropdownPanel& panel();
  MainWindow& window();

  bool isPanelShown() const { return panel_ && panel_->isVisible(); }
  bool isWindowShown() const { return window_ && window_->isVisible(); }
  bool isShown() const { return isPanelShown() || isWindowShown(); }

 Q_SIGNALS:
  void panelMade(spacemint::DropdownPanel& panel);
  void windowMade(spacemint::MainWindow& window);

 protected:
  bool eventFilter(QObject* object, QEvent* event) override;

 private:
  QVariantMap rootProperties();
  void followAppearance();

  InterfaceHost host_;
  QQmlEngine engine_;
  Ui ui_;
  std::unique_ptr<DropdownPanel> panel_;
  std::unique_ptr<MainWindow> window_;
};

}  // namespace spacemint
