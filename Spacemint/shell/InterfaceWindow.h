#pragma once

#include <QQuickView>

#include <functional>

namespace spacemint {

/// A window that shows the whole interface. Main thread only.
class InterfaceWindow : public QQuickView {
  Q_OBJECT
 public:
  /// `properties` are those of the root, InterfaceRoot.qml.
  InterfaceWindow(QQmlEngine& engine, const QVariantMap& properties);

  /// Escape, where nothing in the window takes it.
  std::function<void()> onCancel;
  /// Any other such key; answers whether it meant something.
  std::function<bool(const QKeyEvent&)> onKey;

  /// The card with the product's name and version.
  void showAbout();

 protected:
  void keyPressEvent(QKeyEvent* event) override;
};

}  // namespace spacemint
