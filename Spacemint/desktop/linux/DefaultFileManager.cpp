#include "Spacemint/desktop/linux/DefaultFileManager.h"

#include <QLocale>
#include <QProcess>
#include <QSettings>
#include <QStandardPaths>

namespace spacemint {

namespace {

// The name in the desktop file, in the user's language if the file has it. Empty if there is none.
QString nameIn(const QString& desktopFile) {
  const QSettings file{desktopFile, QSettings::IniFormat};
  const QString locale = QLocale().name();
  const QString language = locale.section(QLatin1Char('_'), 0, 0);
  for (const QString& key : {QStringLiteral("Name[%1]").arg(locale), QStringLiteral("Name[%1]").arg(language),
                             QStringLiteral("Name")}) {
    // A name with a comma is read as a list.
    const QString name =
        file.value(QStringLiteral("Desktop Entry/") + key).toStringList().join(QLatin1String(", "));
    if (!name.isEmpty()) return name;
  }
  return {};
}

}  // namespace

void findDefaultFileManager(QObject* context, std::function<void(const std::string& name)> found) {
  auto* process = new QProcess{context};
  process->setStandardErrorFile(QProcess::nullDevice());
  QObject::connect(process, &QProcess::finished, process, [process, found = std::move(found)] {
    process->deleteLater();
    const QString id = QString::fromLocal8Bit(process->readAllStandardOutput()).trimmed();
    // This program opens folders too, but it is no file manager.
    const bool isOwn = id == QStringLiteral("app.spacemint.Spacemint.desktop");
    if (id.isEmpty() || isOwn || id.contains(QLatin1Char('/'))) return;
    const QString file = QStandardPaths::locate(QStandardPaths::ApplicationsLocation, id);
    if (file.isEmpty()) return;
    const QString name = nameIn(file);
    if (!name.isEmpty()) found(name.toStdString());
  });
  process->start(QStringLiteral("xdg-mime"),
                 {QStringLiteral("query"), QStringLiteral("default"), QStringLiteral("inode/directory")},
                 QProcess::ReadOnly);
}

}  // namespace spacemint
