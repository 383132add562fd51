#include "support/ShownView.h"

#include "support/Waiting.h"
#include "ui_kit/UiKit.h"

#include <QAccessible>
#include <QQmlEngine>
#include <QQmlExtensionPlugin>
#include <QTest>
#include <gtest/gtest.h>

Q_IMPORT_QML_PLUGIN(Spacemint_ServicesPlugin)
Q_IMPORT_QML_PLUGIN(Spacemint_UiKitPlugin)
Q_IMPORT_QML_PLUGIN(Spacemint_ViewsPlugin)

namespace spacemint::support {

namespace {

// A warning that is logged during a test fails the test.
void failOn(QtMsgType type, const QMessageLogContext& context, const QString& message) {
  if (type == QtDebugMsg || type == QtInfoMsg) return;
  ADD_FAILURE() << message.toStdString() << " (" << (context.file != nullptr ? context.file : "") << ":"
                << context.line << ")";
}

QPoint centre(const QQuickItem& item) {
  return item.mapToScene(QPointF{item.width() / 2, item.height() / 2}).toPoint();
}

bool isSeen(const QQuickItem& item) {
  return item.isVisible() && item.opacity() > 0 && item.width() > 0 && item.height() > 0;
}

QString nameOf(QQuickItem* item) {
  QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(item);
  // A no-break space looks like a space.
  return accessible != nullptr ? accessible->text(QAccessible::Name).replace(QChar::Nbsp, u' ') : QString{};
}

bool isOfType(const QObject& object, const QByteArray& type) {
  for (const QMetaObject* meta = object.metaObject(); meta != nullptr; meta = meta->superClass()) {
    const QByteArray name = meta->className();
    if (name == type || name.startsWith(type + "_QML")) return true;
  }
  return false;
}

void collect(QQuickItem* item, const QString& name, const QByteArray& type, QList<QQuickItem*>& found) {
  if (!isSeen(*item)) return;
  if ((name.isEmpty() || nameOf(item) == name) && (type.isEmpty() || isOfType(*item, type))) found << item;
  const auto children = item->childItems();
  for (QQuickItem* child : children) collect(child, name, type, found);
}

}  // namespace

ShownView::ShownView(const QString& file, const QVariantMap& properties, QSize size)
    : view_(std::make_unique<QQuickView>()) {
  qInstallMessageHandler(failOn);
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

ShownView::~ShownView() {
  view_.reset();
  qInstallMessageHandler(nullptr);
}

Theme& ShownView::theme() {
  return UiKit::theme(*view_->engine());
}

QList<QQuickItem*> ShownView::find(const QString& name, const char* type) {
  QList<QQuickItem*> found;
  collect(view_->contentItem(), name, type, found);
  std::ranges::stable_sort(found, {}, [](const QQuickItem* item) { return item->mapToScene({}).y(); });
  return found;
}

QQuickItem* ShownView::get(const QString& name, const char* type) {
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

void ShownView::click(QQuickItem* item, Qt::MouseButton button) {
  QTest::mouseClick(view_.get(), button, {}, centre(*item));
  settle();
}

void ShownView::doubleClick(QQuickItem* item) {
  QTest::mouseDClick(view_.get(), Qt::LeftButton, {}, centre(*item));
  settle();
}

void ShownView::hover(QQuickItem* item) {
  // A pointer that is there already, from another test, would not move.
  QTest::mouseMove(view_.get(), centre(*item) + QPoint{2, 2});
  QTest::mouseMove(view_.get(), centre(*item));
  settle();
}

void ShownView::press(Qt::Key key, Qt::KeyboardModifiers modifiers) {
  QTest::keyClick(view_.get(), key, modifiers);
  settle();
}

void ShownView::hold(Qt::Key key) {
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

// A frame is drawn when all layouts are done. Items that the first frame made are in the second.
void ShownView::settle() {
  for (int frame = 0; frame < 2; ++frame) {
    bool isDrawn = false;
    const auto connection =
        QObject::connect(view_.get(), &QQuickWindow::frameSwapped, view_.get(), [&] { isDrawn = true; });
    view_->update();
    EXPECT_TRUE(waitUntil([&] { return isDrawn; }, std::chrono::seconds{20}));
    QObject::disconnect(connection);
  }
}

}  // namespace spacemint::support
