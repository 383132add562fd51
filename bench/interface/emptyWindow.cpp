// Shows an empty Qt Quick window with software rendering, to measure the least memory that a Qt Quick program
// needs. Prints "drawn" after the first frame and runs until it is killed.

#include <QGuiApplication>
#include <QQmlComponent>
#include <QQuickView>

#include <cstdio>

int main(int argc, char** argv) {
  QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
  const QGuiApplication application(argc, argv);
  QQuickView view;
  QQmlComponent component(view.engine());
  component.setData("import QtQuick; Rectangle { width: 460; height: 700 }", {});
  view.setContent({}, &component, component.create());
  bool isTold = false;
  QObject::connect(&view, &QQuickWindow::frameSwapped, &view, [&isTold] {
    if (!isTold) std::puts("drawn");
    std::fflush(stdout);
    isTold = true;
  });
  view.show();
  return QGuiApplication::exec();
}
