#pragma once

#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

namespace spacemint::support {

/// A file manager that keeps what it is asked to show.
class FakeFileManager : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")
 public:
  explicit FakeFileManager(QDBusConnection bus) {
    bus.registerObject(QStringLiteral("/org/freedesktop/FileManager1"), this,
                       QDBusConnection::ExportAllSlots);
    bus.registerService(QStringLiteral("org.freedesktop.FileManager1"));
  }

  QStringList shown;

 public Q_SLOTS:
  void ShowItems(const QStringList& urls, const QString& /*startupId*/) { shown << urls; }
};

/// A desktop portal that keeps what it is asked to open.
class FakePortal : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.OpenURI")
 public:
  explicit FakePortal(QDBusConnection bus) {
    bus.registerObject(QStringLiteral("/org/freedesktop/portal/desktop"), this,
                       QDBusConnection::ExportAllSlots);
    bus.registerService(QStringLiteral("org.freedesktop.portal.Desktop"));
  }

  QStringList opened;

 public Q_SLOTS:
  QDBusObjectPath OpenURI(const QString& /*window*/, const QString& url, const QVariantMap& /*options*/) {
    opened << url;
    return QDBusObjectPath{QStringLiteral("/org/freedesktop/portal/desktop/request/1")};
  }
};

}  // namespace spacemint::support
