#pragma once

#include "AppServices/AppServices.h"
#include "Spacemint/shell/WindowMemory.h"
#include "Spacemint/shell/Windows.h"
#include "Spacemint/views/Ui.h"

#include <QQmlEngine>
#include <QQmlNetworkAccessManagerFactory>
#include <QStringList>

#include <memory>

namespace spacemint {

/// What an interface is made of. The referenced objects outlive it.
struct InterfaceHost {
  UiHost ui;
  AppServices& services;
  DefaultsStore& defaults;
  /// Keys and their meanings in turn, for the help.
  QStringList keyHelp;
};

/// Refuses every request. QML may not use the network: text from a server could otherwise load a picture from
/// anywhere. `WebClient` is the only way to the network. Any thread.
class NoNetworkForQml final : public QQmlNetworkAccessManagerFactory {
 public:
  QNetworkAccessManager* create(QObject* parent) override;
};

/// Everything that exists only to be seen: the QML engine, the objects of the views and the two windows. Each
/// window is created when it is first used. Destroy the interface to give the memory back. Main thread only.
class Interface : public QObject {
  Q_OBJECT
 public:
  explicit Interface(InterfaceHost host);
  ~Interface() override;

  DropdownPanel& panel();
  MainWindow& window();
  LayerShell& layers() { return layers_; }

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
  void restoreView();
  void keepView();

  InterfaceHost host_;
  NoNetworkForQml noNetwork_;
  QQmlEngine engine_;
  LayerShell layers_{engine_};
  Ui ui_;
  std::unique_ptr<DropdownPanel> panel_;
  std::unique_ptr<MainWindow> window_;
};

}  // namespace spacemint
