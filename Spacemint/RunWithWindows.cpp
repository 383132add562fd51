#include "AppServices/AppServices.h"
#include "Spacemint/Process.h"
#include "Spacemint/desktop/linux/InstalledFiles.h"
#include "Spacemint/desktop/linux/RunningInstance.h"
#include "Spacemint/desktop/linux/Termination.h"
#include "Spacemint/desktop/linux/Wayland.h"
#include "Spacemint/shell/Application.h"
#include "core/base/Translation.h"
#include "core/host/InstalledFolder.h"
#include "core/host/UserFolders.h"
#include "core/host/UserTimeZone.h"

#include <QDir>
#include <QGuiApplication>
#include <QLocale>
#include <QQmlExtensionPlugin>
#include <QQuickWindow>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

Q_IMPORT_QML_PLUGIN(Spacemint_UiKitPlugin)
Q_IMPORT_QML_PLUGIN(Spacemint_ServicesPlugin)
Q_IMPORT_QML_PLUGIN(Spacemint_ViewsPlugin)
Q_IMPORT_QML_PLUGIN(Spacemint_ShellPlugin)

namespace spacemint {

namespace {

// Warnings of Qt while the application object is made. They are written if that succeeds.
QByteArrayList heldBack;

// The platform plugins of Qt to try, in that order; empty for Qt's own choice. The panel has its place by
// layer shell or by X11, also by XWayland; under Wayland without layer shell only the compositor places
// windows.
std::string platforms(bool placesOnWayland) {
  if (qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) return {};
  const bool hasWayland = qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
  if (!qEnvironmentVariableIsSet("DISPLAY")) return hasWayland ? "wayland" : "";
  if (!hasWayland) return "xcb";
  return placesOnWayland ? "wayland;xcb" : "xcb;wayland";
}

bool hasWaylandPlugin() {
  return std::ranges::any_of(QCoreApplication::libraryPaths(), [](const QString& folder) {
    return !QDir{folder + QStringLiteral("/platforms")}.entryList({QStringLiteral("libqwayland*")}).isEmpty();
  });
}

std::string whyThereAreNoWindows() {
  if (platforms(false) == "wayland" && !hasWaylandPlugin()) {
    return i18n("Qt's plugin for Wayland is missing: install the package qt6-wayland, or XWayland");
  }
  const char* variable = qEnvironmentVariableIsSet("DISPLAY") ? "DISPLAY" : "WAYLAND_DISPLAY";
  return i18n("cannot open the display of {variable}, \"{display}\"; \"spacemint --background\" needs none",
              {{"variable", variable}, {"display", qgetenv(variable).toStdString()}});
}

// Without a display, Qt writes several lines and ends the program by abort(). This writes one line and exits.
void exitInsteadOfAborting(QtMsgType type, const QMessageLogContext& context, const QString& text) {
  if (type == QtFatalMsg) {
    complain(whyThereAreNoWindows());
    std::_Exit(EXIT_FAILURE);
  }
  heldBack.push_back(qFormatLogMessage(type, context, text).toLocal8Bit());
}

AppServicesHost servicesOf(Process& process) {
  const Desktop desktop = process.desktop.desktop();
  return {.info = process.info,
          .defaults = process.defaults,
          .package = "spacemint",
          .updatesFolder = UserFolders::cache() + "/spacemint/updates",
          .today = [&clock = desktop.clock] { return dayText(clock.now(), userTimeZone()); },
          .openUrl = [&opener = desktop.opener](
                         const std::string& url,
                         std::function<void()> failed) { opener.openUrl(url, std::move(failed)); }};
}

bool hasDisplay() {
  return qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY") ||
         qEnvironmentVariableIsSet("QT_QPA_PLATFORM");
}

}  // namespace

int runWithWindows(char* program, Launch launch) {
  if (!hasDisplay()) {
    complain(i18n("there is no display to show windows on; \"spacemint --background\" needs none"));
    return EXIT_FAILURE;
  }
  // The software renderer takes a third of the memory, and shows the first frame sooner.
  if (!qEnvironmentVariableIsSet("QT_QUICK_BACKEND")) {
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
  }
  // The platform is not set in the environment, which programs that we start would inherit.
  std::string option = "-platform";
  const bool placesOnWayland = LayerShell::isInstalled() && hasLayerShell();
  std::string value = platforms(placesOnWayland);
  std::vector<char*> arguments{program};
  if (!value.empty()) arguments.insert(arguments.end(), {option.data(), value.data()});
  int count = static_cast<int>(arguments.size());
  arguments.push_back(nullptr);
  const auto usualHandler = qInstallMessageHandler(exitInsteadOfAborting);
  const QGuiApplication qtApplication{count, arguments.data()};
  qInstallMessageHandler(usualHandler);
  for (const QByteArray& line : std::as_const(heldBack)) std::fprintf(stderr, "%s\n", line.constData());
  setUpTranslation(InstalledFolder::translations());  // again, because Qt sets the locale of the process
  QGuiApplication::setLayoutDirection(QLocale{QString::fromStdString(sentenceLanguage())}.textDirection());
  QGuiApplication::setDesktopFileName(QStringLiteral("app.spacemint.Spacemint"));
  QGuiApplication::setQuitOnLastWindowClosed(false);
  RunningInstance instance{QDBusConnection::sessionBus(), RunningInstance::Kind::windows};
  if (!instance.become()) {
    if (!launch.isLogin) instance.askOther(launch.action, launch.path);
    return EXIT_SUCCESS;
  }
  const Termination termination{[] { QCoreApplication::quit(); }};
  Process process;
  AppServices services{servicesOf(process)};
  auto application = std::make_unique<Application>(
      ApplicationHost{.model = *process.model,
                      .desktop = process.desktop.desktop(),
                      .services = services,
                      .defaults = process.defaults,
                      .home = UserFolders::home(),
                      .locale = userLocale(),
                      .hasBundleIdentifier = process.info.identifier.has_value(),
                      .hasLayerShell = placesOnWayland,
                      .quit = [] { QCoreApplication::quit(); }});
  QObject::connect(&instance, &RunningInstance::asked, application.get(), &Application::perform);
  QObject::connect(&instance, &RunningInstance::askedFor, application.get(), &Application::open);
  application->start();
  if (!launch.path.empty()) application->open(launch.path);
  if (launch.action != LaunchAction::open) application->perform(launch.action);
  const int code = QCoreApplication::exec();
  application.reset();
  return process.end(code);
}

}  // namespace spacemint
