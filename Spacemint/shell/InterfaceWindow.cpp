#include "Spacemint/shell/InterfaceWindow.h"

#include <QKeyEvent>
#include <QQuickItem>

namespace spacemint {

InterfaceWindow::InterfaceWindow(QQmlEngine& engine, const QVariantMap& properties)
    : QQuickView(&engine, nullptr) {
  setResizeMode(QQuickView::SizeRootObjectToView);
  setInitialProperties(properties);
  setSource(QUrl{QStringLiteral("qrc:/qt/qml/Spacemint/Shell/InterfaceRoot.qml")});
}

void InterfaceWindow::showAbout() {
  rootObject()->setProperty("showingAbout", true);
}

void InterfaceWindow::keyPressEvent(QKeyEvent* event) {
  QQuickView::keyPressEvent(event);
  if (event->isAccepted()) return;
  if (event->key() == Qt::Key_Escape && onCancel) {
    onCancel();
    event->accept();
  } else if (onKey && onKey(*event)) {
    event->accept();
  }
}

}  // namespace spacemint
