#pragma once

#include <QMargins>
#include <QQmlEngine>
#include <QRasterWindow>

#include <memory>

namespace spacemint {

/// Windows at the edges of a Wayland screen, by the protocol layer shell. It is reached through a QML module
/// of the desktop that may be installed (org.kde.layershell), so that the program does not depend on it. Main
/// thread only.
class LayerShell {
 public:
  struct Place {
    /// The window is held at these edges. At two opposite edges it takes the room between them.
    Qt::Edges edges;
    /// The distance from each edge.
    QMargins margins;
    /// Whether a click gives the window the keyboard focus.
    bool takesKeys = false;
  };

  /// Whether the QML module is installed. Says nothing about the compositor.
  static bool isInstalled();

  explicit LayerShell(QQmlEngine& engine);
  ~LayerShell();

  /// Call it before the window is shown. False if the module cannot be loaded.
  bool put(QWindow& window, const Place& place);

 private:
  QQmlEngine& engine_;
  std::unique_ptr<QObject> module_;
};

/// A transparent window over everything except the desktop's panels, to notice clicks beside our panel. Main
/// thread only.
class ClickCatcher final : public QRasterWindow {
  Q_OBJECT
 public:
  ClickCatcher();

 Q_SIGNALS:
  void clicked();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
};

}  // namespace spacemint
