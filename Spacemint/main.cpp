#include "Spacemint/Process.h"
#include "Spacemint/desktop/linux/RunningInstance.h"
#include "Spacemint/desktop/linux/Termination.h"
#include "core/base/Translation.h"
#include "core/host/InstalledFolder.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QUrl>

#include <array>
#include <cstdio>
#include <cstdlib>

namespace spacemint {

namespace {

int runInBackground(int argc, char** argv) {
  const QCoreApplication application{argc, argv};
  setUpTranslation(InstalledFolder::translations());  // again, because Qt sets the locale of the process
  RunningInstance instance{QDBusConnection::sessionBus(), RunningInstance::Kind::background};
  if (!instance.become()) {
    complain(i18n("it is running already"));
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

struct Option {
  const char* spelling;
  const char* name;
  const char* help;
};
constexpr std::array options{
    Option{"-h, --help", "help", i18nMark("Displays help on commandline options.")},
    Option{"-v, --version", "version", i18nMark("Displays version information.")},
    Option{"--background", "background",
           i18nMark("Scan, record and warn without windows; only notifications are shown.")},
    Option{"--login", "login", i18nMark("Start as at login: shows nothing if it is running already.")},
    Option{"--scan", "scan", i18nMark("Start a scan and show it.")},
    Option{"--settings", "settings", i18nMark("Show the settings.")}};

void printHelp() {
  const std::string head = i18n("Usage: {command} [options] [FOLDER|FILE]", {{"command", "spacemint"}});
  std::printf("%s\n%s\n", head.c_str(), i18n("Watches the free space and shows what uses it.").c_str());
  std::printf("\n  %-13s  %s\n", i18n("FOLDER").c_str(), i18n("Show what is in this folder.").c_str());
  std::printf("  %-13s  %s\n", i18n("FILE").c_str(),
              i18n("Show a scan that was exported, also on another computer.").c_str());
  std::printf("\n%s\n", i18n("Options:").c_str());
  for (const Option& option : options) {
    std::printf("  %-13s  %s\n", option.spelling, i18n(option.help).c_str());
  }
}

int run(int argc, char** argv) {
  setUpTranslation(InstalledFolder::translations(), ShownIn::terminal);
  QCoreApplication::setApplicationName(QStringLiteral("spacemint"));
  QCommandLineParser parser;
  for (const Option& option : options) {
    const QStringList names = QString::fromLatin1(option.spelling).remove(u'-').split(QStringLiteral(", "));
    parser.addOption(QCommandLineOption{names});
  }
  // Parsed before the application object is made: the options decide which kind it is.
  QStringList arguments;
  for (int i = 0; i < argc; ++i) arguments << QString::fromLocal8Bit(argv[i]);
  const auto isSet = [&](const char* name) { return parser.isSet(QString::fromLatin1(name)); };
  if (!parser.parse(arguments)) {
    const std::string unknown = parser.unknownOptionNames().value(0).toStdString();
    complain(unknown.empty() ? i18n("An option has a value but takes none.")
                             : i18n("Unknown option \"{option}\".", {{"option", unknown}}));
    return EXIT_FAILURE;
  }
  if (isSet("help")) return printHelp(), EXIT_SUCCESS;
  if (isSet("version")) return std::printf("spacemint %s\n", SPACEMINT_VERSION), EXIT_SUCCESS;
  if (isSet("background")) return runInBackground(argc, argv);
  auto action = LaunchAction::open;
  if (isSet("scan")) action = LaunchAction::scan;
  if (isSet("settings")) action = LaunchAction::settings;
  // File managers pass a URL or a path.
  const QStringList places = parser.positionalArguments();
  const QUrl place = places.isEmpty() ? QUrl{} : QUrl::fromUserInput(places.front(), QDir::currentPath());
  if (!places.isEmpty() && !QFileInfo::exists(place.toLocalFile())) {
    complain(i18n("{path}: no file or folder of this computer", {{"path", places.front().toStdString()}}));
    return EXIT_FAILURE;
  }
  const std::string path = places.isEmpty() ? "" : QDir::cleanPath(place.toLocalFile()).toStdString();
  return runWithWindows(argv[0], {.action = action, .path = path, .isLogin = isSet("login")});
}

}  // namespace

}  // namespace spacemint

int main(int argc, char** argv) {
  return spacemint::run(argc, argv);
}
