#pragma once

#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

namespace spacemint::support {

/// A program on the bus that keeps what it is asked to open.
class FakeOpenerService : public QObject {
  Q_OBJECT
 public:
  FakeOpenerService(QDBusConnection bus, const char* path, const char* name) {
    bus.registerObject(QString::fromLatin1(path), this, QDBusConnection::ExportAllSlots);
    bus.registerService(QString::fromLatin1(name));
  }

  QStringList opened;
};

class FakeFileManager : public FakeOpenerService {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")
 public:
  explicit FakeFileManager(const QDBusConnection& bus)
      : FakeOpenerService(bus, "/org/freedesktop/FileManager1", "org.freedesktop.FileManager1") {}

 public Q_SLOTS:
  void ShowItems(const QStringList& urls, const QString& /*startupId*/) { opened << urls; }
};

class FakePortal : public FakeOpenerService {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.OpenURI")
 public:
  explicit FakePortal(const QDBusConnection& bus)
      : FakeOpenerService(bus, "/org/freedesktop/portal/desktop", "org.freedesktop.portal.Desktop") {}

 public Q_SLOTS:
  QDBusObjectPath OpenURI(const QString& /*window*/, const QString& url, const QVariantMap& /*options*/) {
    opened << url;
    return QDBusObjectPath{QStringLiteral("/org/freedesktop/portal/desktop/request/1")};
  }
};

}  // namespace spacemint::support
