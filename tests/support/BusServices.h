#pragma once

#include "support/PrivateBus.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

#include <utility>
#include <vector>

namespace spacemint::support {

/// A notification service that shows nothing and keeps what it is told.
class FakeNotifications : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")
 public:
  struct Shown {
    QString application;
    QString icon;
    QString summary;
    QString body;
    QStringList actions;
    QVariantMap hints;
    int timeout = 0;
  };

  FakeNotifications(const QDBusConnection& bus, QStringList capabilities)
      : bus_(bus),
        capabilities_(std::move(capabilities)) {
    bus_.registerObject(QStringLiteral("/org/freedesktop/Notifications"), this,
                        QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals);
    bus_.registerService(name());
  }
  ~FakeNotifications() override {
    bus_.unregisterService(name());
    bus_.unregisterObject(QStringLiteral("/org/freedesktop/Notifications"));
  }

  std::vector<Shown> shown;

 public Q_SLOTS:
  QStringList GetCapabilities() { return capabilities_; }
  QString GetServerInformation() { return QStringLiteral("fake"); }
  // NOLINTNEXTLINE(readability-function-size): the arguments are the interface's
  uint Notify(const QString& application, uint /*replaces*/, const QString& icon, const QString& summary,
              const QString& body, const QStringList& actions, const QVariantMap& hints, int timeout) {
    shown.push_back({application, icon, summary, body, actions, hints, timeout});
    return static_cast<uint>(shown.size());
  }

 Q_SIGNALS:
  void ActionInvoked(uint id, const QString& action);
  void NotificationClosed(uint id, uint reason);

 private:
  static QString name() { return QStringLiteral("org.freedesktop.Notifications"); }

  QDBusConnection bus_;
  QStringList capabilities_;
};

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

/// A portal whose dialog the user answers at once.
class FakeFileDialog : public FakeOpenerService {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.FileChooser")
 public:
  explicit FakeFileDialog(const QDBusConnection& bus)
      : FakeOpenerService(bus, "/org/freedesktop/portal/desktop", "org.freedesktop.portal.Desktop"),
        bus_(bus) {}

  QString answer;
  /// 1: the user cancels.
  uint code = 0;

 public Q_SLOTS:
  QDBusObjectPath OpenFile(const QString& /*window*/, const QString& title, const QVariantMap& options,
                           const QDBusMessage& call) {
    opened << title;
    const QString path = QStringLiteral("/org/freedesktop/portal/desktop/request/%1/%2")
                             .arg(call.service().mid(1).replace(u'.', u'_'),
                                  options.value(QStringLiteral("handle_token")).toString());
    QDBusMessage response = QDBusMessage::createSignal(path, QStringLiteral("org.freedesktop.portal.Request"),
                                                       QStringLiteral("Response"));
    bus_.send(response << code << QVariantMap{{QStringLiteral("uris"), QStringList{answer}}});
    return QDBusObjectPath{path};
  }

 private:
  QDBusConnection bus_;
};

/// The settings service of Xfce, which knows one setting of its panel.
class FakeXfconf : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.xfce.Xfconf")
 public:
  explicit FakeXfconf(QDBusConnection bus) {
    bus.registerObject(QStringLiteral("/org/xfce/Xfconf"), this,
                       QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals);
    bus.registerService(QStringLiteral("org.xfce.Xfconf"));
  }

 public Q_SLOTS:
  QDBusVariant GetProperty(const QString& channel, const QString& property) {
    return QDBusVariant{channel + property != QStringLiteral("xfce4-panel/panels/dark-mode")};
  }

 Q_SIGNALS:
  void PropertyChanged(const QString& channel, const QString& property, const QDBusVariant& value);
};

}  // namespace spacemint::support
