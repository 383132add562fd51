#include "Spacemint/Process.h"
#include "Spacemint/desktop/linux/RunningInstance.h"
#include "Spacemint/desktop/linux/Termination.h"
#include "core/base/Translation.h"
#include "core/host/InstalledFolder.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <cstdlib>

namespace spacemint {

namespace {

int runInBackground(int argc, char** argv) {
  const QCoreApplication application{argc, argv};
  setUpTranslation(InstalledFolder::translations());  // again, because Qt sets the locale of the process
  RunningInstance instance{QDBusConnection::sessionBus(), RunningInstance::Kind::background};
  if (!instance.become()) {
    complain("it is running already");
    return EXIT_FAILURE;
  }
  const Termination termination{[] { QCoreApplication::quit(); }};
  QObject::connect(&instance, &RunningInstance::replaced, &application, [] { QCoreApplication::quit(); });
  Process process;
  const auto following = process.model->prefs().observe(
      Preferences::followedAtOnce, [&process](Setting) { process.model->preferencesChanged(); });
  process.model->start();
  return process.end(QCoreApplication::exec());
}

}  // namespace

}  // namespace spacemint

int main(int argc, char** argv) {
  spacemint::setUpTranslation(spacemint::InstalledFolder::translations());
  QCoreApplication::setApplicationName(QStringLiteral("spacemint"));
  QCoreApplication::setApplicationVersion(QStringLiteral(SPACEMINT_VERSION));

  QCommandLineParser parser;
  parser.setApplicationDescription(QStringLiteral("Watches the free space and shows what uses it."));
  parser.addHelpOption();
  parser.addVersionOption();
  const QCommandLineOption background{
      QStringLiteral("background"),
      QStringLiteral("Scan, record and warn without windows; only notifications are shown.")};
  const QCommandLineOption login{
      QStringLiteral("login"), QStringLiteral("Start as at login: shows nothing if it is running already.")};
  const QCommandLineOption scan{QStringLiteral("scan"), QStringLiteral("Start a scan and show it.")};
  const QCommandLineOption settings{QStringLiteral("settings"), QStringLiteral("Show the settings.")};
  parser.addOptions({background, login, scan, settings});
  // Parsed before the application object is made: the options decide which kind it is.
  QStringList arguments;
  for (int i = 0; i < argc; ++i) arguments << QString::fromLocal8Bit(argv[i]);
  parser.process(arguments);
  if (parser.isSet(background)) return spacemint::runInBackground(argc, argv);
  auto action = spacemint::LaunchAction::open;
  if (parser.isSet(scan)) action = spacemint::LaunchAction::scan;
  if (parser.isSet(settings)) action = spacemint::LaunchAction::settings;
  return spacemint::runWithWindows(argv[0], {.action = action, .isLogin = parser.isSet(login)});
}
