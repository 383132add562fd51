#pragma once

#include "support/Waiting.h"
#include "ui_kit/Theme.h"
#include "ui_kit/UiKit.h"

#include <QAccessible>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QQuickWindow>
#include <QTest>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

namespace spacemint::support {

/// A view of the interface in a window without a screen.
class ShownView {
 public:
  /// `file` is the name of a QML file of the views.
  ShownView(const QString& file, const QVariantMap& properties, QSize size = {460, 560})
      : view_(std::make_unique<QQuickView>()) {
    QAccessible::setActive(true);
    UiKit::install(*view_->engine());
    theme().setReducedMotion(true);
    view_->setResizeMode(QQuickView::SizeRootObjectToView);
    view_->resize(size);
    view_->setInitialProperties(properties);
    view_->setSource(QUrl{QStringLiteral("qrc:/qt/qml/Spacemint/Views/") + file});
    view_->show();
    view_->requestActivate();
    EXPECT_NE(view_->rootObject(), nullptr);
    EXPECT_TRUE(QTest::qWaitForWindowActive(view_.get()));
    settle();
  }

  QQuickView& window() { return *view_; }
  QQuickItem* root() { return view_->rootObject(); }
  Theme& theme() { return UiKit::theme(*view_->engine()); }

  /// The visible items with this name for screen readers and of this type or a type derived from it, from top
  /// to bottom. The name, the type or both may be empty.
  QList<QQuickItem*> find(const QString& name, const char* type = "") {
    QList<QQuickItem*> found;
    collect(view_->contentItem(), name, type, found);
    std::ranges::stable_sort(found, {}, [](const QQuickItem* item) { return item->mapToScene({}).y(); });
    return found;
  }
  /// The first of `find`; fails the test if there is none.
  QQuickItem* get(const QString& name, const char* type = "") {
    const auto found = find(name, type);
    if (found.isEmpty()) {
      QStringList seen;
      for (QQuickItem* item : find({}, type)) seen << nameOf(item);
      seen.removeAll(QString{});
      ADD_FAILURE() << name.toStdString() << " is not seen, but "
                    << seen.join(QStringLiteral(" | ")).toStdString();
    }
    return found.isEmpty() ? view_->contentItem() : found.first();
  }
  bool shows(const QString& text) { return !find(text).isEmpty(); }

  void click(QQuickItem* item, Qt::MouseButton button = Qt::LeftButton,
             Qt::KeyboardModifiers modifiers = {}) {
    QTest::mouseClick(view_.get(), button, modifiers, centre(*item));
    settle();
  }
  void doubleClick(QQuickItem* item) {
    QTest::mouseDClick(view_.get(), Qt::LeftButton, {}, centre(*item));
    settle();
  }
  void hover(QQuickItem* item) {
    // A pointer that is there already, from another test, would not move.
    QTest::mouseMove(view_.get(), centre(*item) + QPoint{2, 2});
    QTest::mouseMove(view_.get(), centre(*item));
    settle();
  }
  void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    QTest::keyClick(view_.get(), key, modifiers);
    settle();
  }
  /// Holds a key down until it has repeated a few times.
  void hold(Qt::Key key) {
    constexpr int repeats = 3;
    const auto send = [&](QEvent::Type type, bool isRepeated) {
      // As a person's key does: shortcuts come first.
      if (type == QEvent::KeyPress && qt_sendShortcutOverrideEvent(view_.get(), 0, key, {}, {}, isRepeated))
        return;
      qt_handleKeyEvent(view_.get(), type, key, {}, {}, isRepeated);
    };
    send(QEvent::KeyPress, false);
    settle();
    for (int i = 0; i < repeats; ++i) {
      send(QEvent::KeyRelease, true);
      send(QEvent::KeyPress, true);
      settle();
    }
    send(QEvent::KeyRelease, false);
    settle();
  }
  /// Waits until transitions and layouts are done.
  // A frame is drawn when all layouts are done. Items that the first frame made are in the second.
  void settle() {
    for (int frame = 0; frame < 2; ++frame) {
      bool isDrawn = false;
      const auto connection =
          QObject::connect(view_.get(), &QQuickWindow::frameSwapped, view_.get(), [&] { isDrawn = true; });
      view_->update();
      EXPECT_TRUE(waitUntil([&] { return isDrawn; }, std::chrono::seconds{20}));
      QObject::disconnect(connection);
    }
  }

 private:
  static QPoint centre(const QQuickItem& item) {
    return item.mapToScene(QPointF{item.width() / 2, item.height() / 2}).toPoint();
  }

  static bool isSeen(const QQuickItem& item) {
    return item.isVisible() && item.opacity() > 0 && item.width() > 0 && item.height() > 0;
  }

  static QString nameOf(QQuickItem* item) {
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(item);
    // A no-break space looks like a space.
    return accessible != nullptr ? accessible->text(QAccessible::Name).replace(QChar::Nbsp, u' ') : QString{};
  }

  static bool isOfType(const QObject& object, const QByteArray& type) {
    for (const QMetaObject* meta = object.metaObject(); meta != nullptr; meta = meta->superClass()) {
      const QByteArray name = meta->className();
      if (name == type || name.startsWith(type + "_QML")) return true;
    }
    return false;
  }

  static void collect(QQuickItem* item, const QString& name, const QByteArray& type,
                      QList<QQuickItem*>& found) {
    if (!isSeen(*item)) return;
    if ((name.isEmpty() || nameOf(item) == name) && (type.isEmpty() || isOfType(*item, type))) found << item;
    const auto children = item->childItems();
    for (QQuickItem* child : children) collect(child, name, type, found);
  }

  std::unique_ptr<QQuickView> view_;
};

}  // namespace spacemint::support
