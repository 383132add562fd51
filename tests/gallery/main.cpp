#include "Pages.h"
#include "ui_kit/Theme.h"
#include "ui_kit/UiKit.h"

#include <QCommandLineParser>
#include <QDir>
#include <QEvent>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>

namespace spacemint::gallery {

namespace {

void pointAt(QQuickWindow& window, const QQuickItem& item) {
  const QPointF centre = item.mapToScene(QPointF(item.width() / 2, item.height() / 2));
  QMouseEvent move(QEvent::MouseMove, centre, window.mapToGlobal(centre), Qt::NoButton, Qt::NoButton, {});
  QCoreApplication::sendEvent(&window, &move);
}

QQuickItem* itemProperty(const QObject& object, const char* name) {
  return object.property(name).value<QQuickItem*>();
}

void fit(QQuickWindow& window, QQuickItem& item, const Page& page) {
  const QSizeF own(item.implicitWidth(), item.implicitHeight());
  item.setSize(page.size.isEmpty() ? own : QSizeF(page.size));
  window.resize(item.size().toSize().grownBy({page.margin, page.margin, page.margin, page.margin}));
}

/// Null, with the reason on standard error, where the page cannot be made.
QImage draw(QQmlEngine& engine, const Page& page) {
  QQmlComponent component(&engine, QUrl(page.url));
  const QVariantMap properties = page.properties ? page.properties() : QVariantMap();
  // A component that is not ready must not be asked to make anything.
  const std::unique_ptr<QObject> object(
      component.isReady() ? component.createWithInitialProperties(properties) : nullptr);
  auto* item = qobject_cast<QQuickItem*>(object.get());
  if (!item) {
    qCritical("%s: %s", qPrintable(page.name), qPrintable(component.errorString()));
    return {};
  }
  QQuickWindow window;
  window.setColor(UiKit::theme(engine).canvas());
  item->setParentItem(window.contentItem());
  item->setPosition(QPointF(page.margin, page.margin));
  window.show();
  window.requestActivate();
  // The width comes from the first layout, and the height of texts that wrap from the second.
  for (int i = 0; i < 2; ++i) {
    fit(window, *item, page);
    QCoreApplication::processEvents();
  }
  if (item->metaObject()->indexOfMethod("act()") >= 0) QMetaObject::invokeMethod(item, "act");
  if (auto* focused = itemProperty(*item, "focused")) focused->forceActiveFocus(Qt::TabFocusReason);
  if (const auto* pointer = itemProperty(*item, "pointer")) pointAt(window, *pointer);
  QCoreApplication::processEvents();
  return window.grabWindow();
}

int drawAll(QQmlEngine& engine, const QDir& folder, const QString& only) {
  int failures = 0;
  for (const Page& page : pages()) {
    if (!page.name.startsWith(only)) continue;
    const QImage image = draw(engine, page);
    if (image.isNull() || !image.save(folder.filePath(page.name + QStringLiteral(".png")))) ++failures;
  }
  return failures;
}

/// The value of an option that must be known before the application is made.
const char* early(int argc, char** argv, const char* option) {
  for (int i = 1; i + 1 < argc; ++i) {
    if (std::strcmp(argv[i], option) == 0) return argv[i + 1];
  }
  return nullptr;
}

}  // namespace

int run(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  if (const char* scale = early(argc, argv, "--scale")) qputenv("QT_SCALE_FACTOR", scale);
  QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
  const QGuiApplication application(argc, argv);

  QCommandLineParser parser;
  parser.setApplicationDescription(QStringLiteral("Draws every component and view into a folder."));
  parser.addHelpOption();
  parser.addOption({QStringLiteral("dark"), QStringLiteral("In the dark appearance.")});
  parser.addOption({QStringLiteral("scale"), QStringLiteral("Pixels of the screen a pixel."),
                    QStringLiteral("factor"), QStringLiteral("1")});
  parser.addOption({QStringLiteral("text-scale"), QStringLiteral("How large the text is."),
                    QStringLiteral("factor"), QStringLiteral("1")});
  parser.addOption({QStringLiteral("only"), QStringLiteral("Only pages whose names start so."),
                    QStringLiteral("name"), QString()});
  parser.addPositionalArgument(QStringLiteral("folder"), QStringLiteral("Where the pictures go."));
  parser.process(application);
  if (parser.positionalArguments().size() != 1) parser.showHelp(2);

  const QDir folder(parser.positionalArguments().constFirst());
  if (!folder.mkpath(QStringLiteral("."))) {
    qCritical("cannot make %s", qPrintable(folder.path()));
    return 1;
  }
  QQmlEngine engine;
  UiKit::install(engine);
  Theme& theme = UiKit::theme(engine);
  theme.setDark(parser.isSet(QStringLiteral("dark")));
  theme.setTextScale(parser.value(QStringLiteral("text-scale")).toDouble());
  theme.setReducedMotion(true);  // a picture of a transition would never be twice the same
  return drawAll(engine, folder, parser.value(QStringLiteral("only"))) == 0 ? 0 : 1;
}

}  // namespace spacemint::gallery

int main(int argc, char** argv) {
  return spacemint::gallery::run(argc, argv);
}
