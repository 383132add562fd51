#include "ui_kit/UiKit.h"

#include "ui_kit/SymbolProvider.h"
#include "ui_kit/Theme.h"

#include <QDir>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickStyle>
#include <QVariant>

#include <memory>
#include <mutex>

namespace spacemint {

namespace {

void loadFonts() {
  const QDir folder(QStringLiteral(":/qt/qml/Spacemint/UiKit/fonts"));
  const QStringList names = folder.entryList();
  for (const QString& name : names) QFontDatabase::addApplicationFont(folder.filePath(name));
}

}  // namespace

void UiKit::install(QQmlEngine& engine) {
  static std::once_flag once;
  std::call_once(once, loadFonts);
  QQuickStyle::setStyle(QStringLiteral("Basic"));
  engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
  engine.addImageProvider(QStringLiteral("symbol"), new SymbolProvider);
  Theme& shared = theme(engine);
  shared.setTextScale(Theme::textScaleOf(QGuiApplication::font()));
}

Theme& UiKit::theme(QQmlEngine& engine) {
  // To look it up compiles a component, so the engine remembers it.
  constexpr const char* name = "spacemintTheme";
  if (auto* known = engine.property(name).value<Theme*>()) return *known;
  // C++ cannot look up a singleton that is written in QML, so a QML object returns it.
  QQmlComponent component(&engine);
  component.setData("import QtQml; import Spacemint.UiKit; QtObject { property QtObject theme: Theme }", {});
  const std::unique_ptr<QObject> holder(component.create());
  auto* theme = holder ? holder->property("theme").value<Theme*>() : nullptr;
  if (!theme) qFatal("%s", qPrintable(component.errorString()));
  engine.setProperty(name, QVariant::fromValue(theme));
  return *theme;
}

}  // namespace spacemint
