#include "AppServices/AppServices.h"
#include "AppServices/Today.h"
#include "Spacemint/Process.h"
#include "Spacemint/desktop/linux/InstalledFiles.h"
#include "Spacemint/desktop/linux/RunningInstance.h"
#include "Spacemint/desktop/linux/Termination.h"
#include "Spacemint/shell/AppDelegate.h"
#include "core/host/UserFolders.h"
#include "core/host/UserTimeZone.h"

#include <QGuiApplication>
#include <QQmlExtensionPlugin>
#include <QQuickWindow>

#include <cstdlib>

Q_IMPORT_QML_PLUGIN(Spacemint_UiKitPlugin)
Q_IMPORT_QML_PLUGIN(Spacemint_ServicesPlugin)
Q_IMPORT_QML_PLUGIN(Spacemint_ViewsPlugin)
Q_IMPORT_QML_PLUGIN(Spacemint_ShellPlugin)

namespace spacemint {

namespace {

AppServicesHost servicesOf(Process& process) {
  return {
      .info = AppInfo::load(InstalledFiles::information()),
      .defaults = process.defaults,
      .package = "spacemint",
      .updatesFolder = UserFolders::cache() + "/spacemint/updates",
      .today = [&clock = process.desktop.desktop().clock] { return dayText(clock.now(), userTimeZone()); },
      .openUrl = [&opener =
                      process.desktop.desktop().opener](const std::string& url) { opener.openUrl(url); }};
}

bool hasDisplay() {
  return qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY") ||
         qEnvironmentVariableIsSet("QT_QPA_PLATFORM");
}

void choosePlatform() {
  // Under Wayland nobody but the compositor places a window, and the panel has its place.
  if (qEnvironmentVariableIsSet("DISPLAY") && !qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
    qputenv("QT_QPA_PLATFORM", "xcb");
  }
  // Drawn by the processor it takes a third of the memory, and is there sooner.
  if (!qEnvironmentVariableIsSet("QT_QUICK_BACKEND")) {
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
  }
}

}  // namespace

int runWithWindows(int argc, char** argv, bool isLogin) {
  if (!hasDisplay()) {
    complain("there is no display to show windows on; \"spacemint --background\" needs none");
    return EXIT_FAILURE;
  }
  choosePlatform();
  const QGuiApplication application{argc, argv};
  QGuiApplication::setDesktopFileName(QStringLiteral("app.spacemint.Spacemint"));
  QGuiApplication::setQuitOnLastWindowClosed(false);
  RunningInstance instance{QDBusConnection::sessionBus(), RunningInstance::Kind::windows};
  if (!instance.become()) {
    if (!isLogin) instance.showOther();
    return EXIT_SUCCESS;
  }
  const Termination termination{[] { QCoreApplication::quit(); }};
  Process process;
  AppServices services{servicesOf(process)};
  auto delegate =
      std::make_unique<AppDelegate>(ShellHost{.model = *process.model,
                                              .desktop = process.desktop.desktop(),
                                              .services = services,
                                              .defaults = process.defaults,
                                              .home = UserFolders::home(),
                                              .locale = userLocale(),
                                              .hasBundleIdentifier = process.info.identifier.has_value(),
                                              .quit = [] { QCoreApplication::quit(); }});
  QObject::connect(&instance, &RunningInstance::activated, delegate.get(), &AppDelegate::showUI);
  delegate->applicationDidFinishLaunching();
  const int code = QCoreApplication::exec();
  delegate.reset();
  return process.end(code);
}

}  // namespace spacemint
