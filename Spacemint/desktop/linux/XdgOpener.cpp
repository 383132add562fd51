#include "Spacemint/desktop/linux/XdgOpener.h"

#include "Spacemint/desktop/linux/DBusCall.h"
#include "Spacemint/desktop/linux/DefaultFileManager.h"
#include "Spacemint/desktop/linux/InstalledFiles.h"
#include "core/base/Log.h"
#include "core/base/PercentEncoding.h"
#include "core/host/UserFolders.h"

#include <QDBusMessage>
#include <QProcess>
#include <QStandardPaths>
#include <QVariantMap>

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <utility>

namespace spacemint {

namespace {

using Page = Opener::SettingsPage;

enum class When { always, inSandbox };

struct Row {
  Page page;
  When when;
  std::string_view desktop;
  std::string_view program;
  std::string_view argument;
  std::string_view secondArgument = {};
};

constexpr std::string_view applicationId = "app.spacemint.Spacemint";
constexpr Row rows[] = {
    {Page::notifications, When::always, "GNOME", "gnome-control-center", "notifications"},
    {Page::notifications, When::always, "KDE", "systemsettings", "kcm_notifications"},
    {Page::notifications, When::always, "KDE", "systemsettings5", "kcm_notifications"},
    {Page::notifications, When::always, "XFCE", "xfce4-notifyd-config", ""},
    {Page::fullDiskAccess, When::inSandbox, "GNOME", "gnome-control-center", "applications", applicationId},
    {Page::fullDiskAccess, When::inSandbox, "KDE", "systemsettings", "kcm_flatpak"},
};

bool isNamed(const std::string& desktop, std::string_view name) {
  return (":" + desktop + ":").find(":" + std::string{name} + ":") != std::string::npos;
}

SettingsProgram programOf(const Row& row, bool isSandboxed) {
  SettingsProgram program{.program = std::string{row.program}};
  // The program is outside of the sandbox.
  if (isSandboxed) program = {.program = "flatpak-spawn", .arguments = {"--host", program.program}};
  for (const std::string_view argument : {row.argument, row.secondArgument}) {
    if (!argument.empty()) program.arguments.emplace_back(argument);
  }
  return program;
}

QDBusMessage openByPortal(const std::string& url) {
  QDBusMessage call = QDBusMessage::createMethodCall(
      QStringLiteral("org.freedesktop.portal.Desktop"), QStringLiteral("/org/freedesktop/portal/desktop"),
      QStringLiteral("org.freedesktop.portal.OpenURI"), QStringLiteral("OpenURI"));
  const QString noWindow;
  return call << noWindow << QString::fromStdString(url) << QVariantMap{};
}

QDBusMessage showInFileManager(const std::string& url) {
  QDBusMessage call = QDBusMessage::createMethodCall(
      QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
      QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
  const QString noStartupId;
  return call << QStringList{QString::fromStdString(url)} << noStartupId;
}

std::string fileUrl(const std::string& path) {
  return "file://" + percentEncoded(path);
}

bool isFile(const std::string& url) {
  return url.starts_with("file:");
}

// By xdg-open, which tells by its exit code whether it found a program. The process object is never destroyed
// before xdg-open has ended: its destructor would kill xdg-open, and with it, on some desktops, the opened
// program.
void openByXdgOpen(const std::string& url, const std::function<void()>& failed) {
  auto* process = new QProcess;
  process->setStandardInputFile(QProcess::nullDevice());
  process->setStandardOutputFile(QProcess::nullDevice());
  process->setStandardErrorFile(QProcess::nullDevice());
  const auto fail = [failed, process, url] {
    log(LogLevel::info, "no program opened " + url);
    process->deleteLater();
    if (failed) failed();
  };
  QObject::connect(process, &QProcess::errorOccurred, process, [fail, process](QProcess::ProcessError error) {
    // This signal comes from inside start().
    if (error == QProcess::FailedToStart) QMetaObject::invokeMethod(process, fail, Qt::QueuedConnection);
  });
  QObject::connect(process, &QProcess::finished, process, [fail, process](int code, QProcess::ExitStatus) {
    code == 0 ? process->deleteLater() : fail();
  });
  process->start(QStringLiteral("xdg-open"), {QString::fromStdString(url)});
}

bool startDetached(const SettingsProgram& program) {
  const QString path = QStandardPaths::findExecutable(QString::fromStdString(program.program));
  if (path.isEmpty()) return false;
  QStringList arguments;
  for (const std::string& argument : program.arguments) arguments << QString::fromStdString(argument);
  return QProcess::startDetached(path, arguments);
}

}  // namespace

SettingsSurroundings SettingsSurroundings::current() {
  std::error_code ignored;
  return {.desktop = UserFolders::environment("XDG_CURRENT_DESKTOP").value_or(""),
          .isSandboxed = std::filesystem::exists("/.flatpak-info", ignored)};
}

std::vector<SettingsProgram> settingsPrograms(Opener::SettingsPage page,
                                              const SettingsSurroundings& surroundings) {
  std::vector<SettingsProgram> programs;
  for (const Row& row : rows) {
    if (row.page == page && isNamed(surroundings.desktop, row.desktop) &&
        (row.when == When::always || surroundings.isSandboxed)) {
      programs.push_back(programOf(row, surroundings.isSandboxed));
    }
  }
  return programs;
}

XdgOpener::Places XdgOpener::Places::current() {
  return {.help = InstalledFiles::permissionsHelp(),
          .surroundings = SettingsSurroundings::current(),
          .openByProgram = openByXdgOpen,
          .start = startDetached};
}

XdgOpener::XdgOpener(QDBusConnection bus, Places places) : bus_(std::move(bus)), places_(std::move(places)) {}

void XdgOpener::openUrl(const std::string& url, std::function<void()> failed) {
  if (isFile(url)) return places_.openByProgram(url, std::move(failed));
  callAsync(bus_, openByPortal(url), &context_,
            [this, url, failed = std::move(failed)](const QDBusMessage& reply) {
              if (reply.type() == QDBusMessage::ErrorMessage) places_.openByProgram(url, failed);
            });
}

void XdgOpener::openSettings(SettingsPage page) {
  const auto programs = settingsPrograms(page, places_.surroundings);
  if (!std::ranges::any_of(programs, places_.start)) openUrl(fileUrl(places_.help), {});
}

void XdgOpener::reveal(const std::string& path) {
  callAsync(bus_, showInFileManager(fileUrl(path)), &context_, [this, path](const QDBusMessage& reply) {
    if (reply.type() != QDBusMessage::ErrorMessage) return;
    places_.openByProgram(fileUrl(std::filesystem::path{path}.parent_path().string()), {});
  });
}

void XdgOpener::findFileManager(std::function<void(const std::string& name)> found) {
  findDefaultFileManager(&context_, std::move(found));
}

}  // namespace spacemint
