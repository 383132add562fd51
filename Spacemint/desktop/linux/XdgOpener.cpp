#include "Spacemint/desktop/linux/XdgOpener.h"

#include "Spacemint/desktop/linux/DBusCall.h"
#include "Spacemint/desktop/linux/InstalledFiles.h"
#include "core/base/PercentEncoding.h"

#include <QDBusMessage>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QProcess>
#include <QStandardPaths>
#include <QUrl>
#include <QVariantMap>

#include <algorithm>
#include <filesystem>
#include <utility>

namespace spacemint {

namespace {

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

void openByDesktopServices(const std::string& url) {
  if (qobject_cast<QGuiApplication*>(QCoreApplication::instance()) == nullptr) return;
  QDesktopServices::openUrl(QUrl::fromEncoded(QByteArray::fromStdString(url), QUrl::StrictMode));
}

bool startDetached(const SettingsProgram& program) {
  const QString path = QStandardPaths::findExecutable(QString::fromStdString(program.program));
  if (path.isEmpty()) return false;
  QStringList arguments;
  for (const std::string& argument : program.arguments) arguments << QString::fromStdString(argument);
  return QProcess::startDetached(path, arguments);
}

}  // namespace

XdgOpener::Places XdgOpener::Places::current() {
  return {.help = InstalledFiles::permissionsHelp(),
          .surroundings = SettingsSurroundings::current(),
          .openByProgram = openByDesktopServices,
          .start = startDetached};
}

XdgOpener::XdgOpener(const QDBusConnection& bus, Places places) : bus_(bus), places_(std::move(places)) {}

// The portal takes no files.
void XdgOpener::openUrl(const std::string& url) {
  if (isFile(url)) return places_.openByProgram(url);
  callAsync(bus_, openByPortal(url), &context_, [this, url](const QDBusMessage& reply) {
    if (reply.type() == QDBusMessage::ErrorMessage) places_.openByProgram(url);
  });
}

void XdgOpener::openSettings(SettingsPage page) {
  const auto programs = settingsPrograms(page, places_.surroundings);
  if (!std::ranges::any_of(programs, places_.start)) openUrl(fileUrl(places_.help));
}

void XdgOpener::reveal(const std::string& path) {
  callAsync(bus_, showInFileManager(fileUrl(path)), &context_, [this, path](const QDBusMessage& reply) {
    if (reply.type() != QDBusMessage::ErrorMessage) return;
    places_.openByProgram(fileUrl(std::filesystem::path{path}.parent_path().string()));
  });
}

}  // namespace spacemint
