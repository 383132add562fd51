#pragma once

#include "ui_kit/Theme.h"

#include <QQuickItem>
#include <QQuickView>
#include <QQuickWindow>

#include <functional>
#include <memory>

namespace spacemint::support {

/// A view of the interface in a window without a screen. A warning of QML fails the test.
class ShownView {
 public:
  /// `file` is the name of a QML file of the views.
  ShownView(const QString& file, const QVariantMap& properties, QSize size = {460, 560});
  ~ShownView();
  ShownView(const ShownView&) = delete;
  ShownView& operator=(const ShownView&) = delete;

  QQuickView& window() { return *view_; }
  QQuickItem* root() { return view_->rootObject(); }
  Theme& theme();

  /// The visible items with this name for screen readers and of this type or a type derived from it, from top
  /// to bottom. The name, the type or both may be empty.
  QList<QQuickItem*> find(const QString& name, const char* type = "");
  /// The first of `find`; fails the test if there is none.
  QQuickItem* get(const QString& name, const char* type = "");
  bool shows(const QString& text) { return !find(text).isEmpty(); }

  void click(QQuickItem* item, Qt::MouseButton button = Qt::LeftButton);
  void doubleClick(QQuickItem* item);
  void hover(QQuickItem* item);
  void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {});
  /// Holds a key down until it has repeated a few times.
  void hold(Qt::Key key);
  /// Waits until transitions and layouts are done.
  void settle();

 private:
  std::unique_ptr<QQuickView> view_;
};

}  // namespace spacemint::support
