// The application's process: what the model stands on, put together once.

#include "Spacemint/desktop/BundleInfo.h"
#include "Spacemint/desktop/linux/InstalledFiles.h"
#include "Spacemint/desktop/linux/LinuxDesktop.h"
#include "Spacemint/desktop/linux/Termination.h"
#include "Spacemint/model/AppModel.h"
#include "core/history/Migration.h"
#include "core/host/UserFolders.h"
#include "core/host/UserTimeZone.h"
#include "core/host/VolumeInfo.h"
#include "core/scan/ScanJournal.h"
#include "core/volume/Permissions.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <cstdio>
#include <cstdlib>

namespace spacemint {

namespace {

// Whoever ends the process may kill it after a few seconds.
constexpr std::chrono::milliseconds patience{1'500};

void complain(const std::string& message) {
  std::fprintf(stderr, "spacemint: %s\n", message.c_str());
}

void takeOverFormerProduct(DefaultsStore& defaults) {
  const auto former = DefaultsStore::formerProduct();
  const auto result = Migration::fromLoftmere({.defaults = defaults,
                                               .oldDefaults = former ? &*former : nullptr,
                                               .supportDirectory = UserFolders::data(),
                                               .fileManager = FileManager::host()});
  if (result.error) complain(*result.error);
}

ModelHost hostOf(DefaultsStore& defaults, ScanJournal& journal) {
  return {.defaults = defaults,
          .store = SnapshotStore::standard(),
          .journal = journal,
          .tools = ToolRuns{Shell{}},
          .home = UserFolders::home(),
          .data = UserFolders::data(),
          .environment = UserFolders::environment,
          .disk = startupVolume(),
          .locale = userLocale(),
          .timeZone = userTimeZone(),
          .hasBundleIdentifier = BundleInfo::load(InstalledFiles::information()).identifier.has_value(),
          .hasFullDiskAccess = Permissions::hasFullDiskAccess};
}

int run(QCoreApplication& application) {
  DefaultsStore defaults = DefaultsStore::standard();
  takeOverFormerProduct(defaults);
  // What tasks use lives until they have ended: after the model and its desktop, or to the end of the
  // process.
  OwnScanJournal journal;
  LinuxDesktop desktop;
  auto model = std::make_unique<AppModel>(hostOf(defaults, journal), desktop.desktop());
  const Termination termination{[&application] { application.quit(); }};
  const auto following =
      model->prefs().observe(Preferences::followedAtOnce, [&model](Setting) { model->preferencesChanged(); });
  model->start();
  const int code = QCoreApplication::exec();
  model.reset();
  if (!desktop.finishTasks(patience)) std::_Exit(code);
  return code;
}

}  // namespace

}  // namespace spacemint

int main(int argc, char** argv) {
  QCoreApplication application{argc, argv};
  QCoreApplication::setApplicationName(QStringLiteral("spacemint"));
  QCoreApplication::setApplicationVersion(QStringLiteral(SPACEMINT_VERSION));

  QCommandLineParser parser;
  parser.setApplicationDescription(QStringLiteral("Watches free space and says what takes it."));
  parser.addHelpOption();
  parser.addVersionOption();
  const QCommandLineOption background{
      QStringLiteral("background"),
      QStringLiteral("Scan, record and warn without showing anything but notifications.")};
  parser.addOption(background);
  parser.process(application);
  if (!parser.isSet(background)) {
    spacemint::complain("there is no window yet; \"spacemint --background\" watches without one");
    return EXIT_FAILURE;
  }
  return spacemint::run(application);
}
