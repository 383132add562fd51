#include "ui_kit/UiKit.h"

#include <QQmlEngine>
#include <QQuickWindow>
#include <QtQuickTest>

/// Sets up the kit for the tests that are written in QML.
class Setup : public QObject {
  Q_OBJECT

 public Q_SLOTS:
  void applicationAvailable() { QQuickWindow::setGraphicsApi(QSGRendererInterface::Software); }
  void qmlEngineAvailable(QQmlEngine* engine) { spacemint::UiKit::install(*engine); }
};

QUICK_TEST_MAIN_WITH_SETUP(ui_kit, Setup)

#include "QuickTests.moc"
