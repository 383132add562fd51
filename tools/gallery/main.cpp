#include "Pages.h"
#include "Spacemint/desktop/linux/Termination.h"
#include "core/base/Translation.h"
#include "ui_kit/Theme.h"
#include "ui_kit/UiKit.h"

#include <QCommandLineParser>
#include <QDir>
#include <QEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLocale>
#include <QMouseEvent>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>

namespace spacemint::gallery {

namespace {

void movePointer(QQuickWindow& window, QPointF to) {
  QMouseEvent move(QEvent::MouseMove, to, window.mapToGlobal(to), Qt::NoButton, Qt::NoButton, {});
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

/// Prints each text that the item shows: "PAGE<tab>cut<tab>TEXT". The second word is "-" for a text that
/// fits, and "shortened" for one that leaves out its middle, as names and paths do.
void printTexts(const QString& page, const QQuickItem& item) {
  if (!item.isVisible() || item.opacity() == 0) return;
  const QString text = item.inherits("QQuickText") ? item.property("text").toString() : QString{};
  if (!text.isEmpty()) {
    constexpr double rounding = 1;
    const bool isCut = item.property("truncated").toBool() ||
                       item.property("contentWidth").toDouble() > item.width() + rounding ||
                       item.property("contentHeight").toDouble() > item.height() + rounding;
    const bool leavesOutMiddle = item.property("elide").toInt() == Qt::ElideMiddle;
    const char* whenCut = leavesOutMiddle ? "shortened" : "cut";
    const QStringList line{page, QString::fromLatin1(isCut ? whenCut : "-"),
                           QString{text}.replace(u'\n', u' ')};
    std::puts(qUtf8Printable(line.join(u'\t')));
  }
  for (const QQuickItem* child : item.childItems()) printTexts(page, *child);
}

/// Null if the page cannot be made; the reason is on standard error.
QImage draw(QQmlEngine& engine, const Page& page, bool printsTexts) {
  QQmlComponent component(&engine, QUrl(page.url));
  QQuickWindow window;
  movePointer(window,
              {-1, -1});  // no page shows the ring of the keyboard, unless it gives the focus to an item
  Theme& theme = UiKit::theme(engine);
  window.setColor(theme.canvas());
  QMetaObject::invokeMethod(&theme, "followDirection", Q_ARG(QQuickItem*, window.contentItem()));
  QVariantMap properties = page.properties ? page.properties() : QVariantMap();
  // Layouts that are made without a parent would not turn around in it.
  properties.insert(QStringLiteral("parent"), QVariant::fromValue(window.contentItem()));
  // A component that is not ready must not create an object.
  const std::unique_ptr<QObject> object(
      component.isReady() ? component.createWithInitialProperties(properties) : nullptr);
  auto* item = qobject_cast<QQuickItem*>(object.get());
  if (!item) {
    qCritical("%s: %s", qPrintable(page.name), qPrintable(component.errorString()));
    return {};
  }
  item->setPosition(QPointF(page.margin, page.margin));
  window.show();
  window.requestActivate();
  // The first layout sets the width; the second sets the height of wrapped texts.
  for (int i = 0; i < 3; ++i) {
    fit(window, *item, page);
    QCoreApplication::processEvents();
  }
  if (page.settle) page.settle();
  if (item->metaObject()->indexOfMethod("act()") >= 0) QMetaObject::invokeMethod(item, "act");
  if (auto* focused = itemProperty(*item, "focused")) {
    // A key that does nothing: the row of the keyboard is only marked after a key.
    QKeyEvent key(QEvent::KeyPress, Qt::Key_Shift, Qt::ShiftModifier);
    QCoreApplication::sendEvent(&window, &key);
    focused->forceActiveFocus(Qt::TabFocusReason);
  }
  if (const auto* pointer = itemProperty(*item, "pointer"))
    movePointer(window, pointer->mapToScene(QPointF(pointer->width() / 2, pointer->height() / 2)));
  QCoreApplication::processEvents();
  window.grabWindow();  // what depends on the width of something else is in its place one frame later
  const QImage picture = window.grabWindow();
  if (printsTexts) printTexts(page.name, *window.contentItem());
  return picture;
}

/// Without a folder no picture is written.
int drawAll(QQmlEngine& engine, const std::optional<QDir>& folder, const QString& only, bool printsTexts) {
  int failures = 0;
  bool isEnded = false;
  // The pages remove their files.
  const Termination termination{[&isEnded] { isEnded = true; }};
  for (const Page& page : pages()) {
    if (isEnded) return 1;
    if (!page.name.startsWith(only)) continue;
    const QImage image = draw(engine, page, printsTexts);
    const QString file = page.name + QStringLiteral(".png");
    if (image.isNull() || (folder && !image.save(folder->filePath(file)))) ++failures;
  }
  return failures;
}

/// The value of an option that is needed before the application exists.
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
  parser.addOption({QStringLiteral("scale"), QStringLiteral("Screen pixels for each pixel."),
                    QStringLiteral("factor"), QStringLiteral("1")});
  parser.addOption({QStringLiteral("text-scale"), QStringLiteral("The size of the text."),
                    QStringLiteral("factor"), QStringLiteral("1")});
  parser.addOption({QStringLiteral("language"), QStringLiteral("The language, such as \"de\"."),
                    QStringLiteral("name"), QString::fromStdString(sentenceLanguage())});
  parser.addOption({QStringLiteral("locale"), QStringLiteral("The locale of numbers, if not the language's."),
                    QStringLiteral("name"), QString::fromStdString(locale)});
  parser.addOption(
      {QStringLiteral("texts"), QStringLiteral("Print the texts of each page, and which are cut.")});
  parser.addOption({QStringLiteral("only"), QStringLiteral("Draw only pages whose names start with this."),
                    QStringLiteral("name"), QString()});
  parser.addPositionalArgument(QStringLiteral("folder"), QStringLiteral("The folder for the pictures."),
                               QStringLiteral("[folder]"));
  parser.process(application);
  if (parser.positionalArguments().size() > 1) parser.showHelp(2);

  std::optional<QDir> folder;
  if (!parser.positionalArguments().isEmpty()) folder.emplace(parser.positionalArguments().constFirst());
  if (folder && !folder->mkpath(QStringLiteral("."))) {
    qCritical("cannot make %s", qPrintable(folder->path()));
    return 1;
  }
  if (parser.isSet(QStringLiteral("language"))) {
    qputenv("LANGUAGE", parser.value(QStringLiteral("language")).toUtf8());
    setUpTranslation(
        qEnvironmentVariable("SPACEMINT_LOCALE_DIR", QStringLiteral(SPACEMINT_CATALOGUES)).toStdString());
    locale = sentenceLanguage();
    QGuiApplication::setLayoutDirection(QLocale{QString::fromStdString(locale)}.textDirection());
  }
  if (parser.isSet(QStringLiteral("locale"))) locale = parser.value(QStringLiteral("locale")).toStdString();
  QQmlEngine engine;
  UiKit::install(engine);
  Theme& theme = UiKit::theme(engine);
  theme.setDark(parser.isSet(QStringLiteral("dark")));
  theme.setTextScale(parser.value(QStringLiteral("text-scale")).toDouble());
  theme.setReducedMotion(true);  // a picture of a transition would differ each time
  return drawAll(engine, folder, parser.value(QStringLiteral("only")),
                 parser.isSet(QStringLiteral("texts"))) == 0
             ? 0
             : 1;
}

}  // namespace spacemint::gallery

int main(int argc, char** argv) {
  return spacemint::gallery::run(argc, argv);
}
