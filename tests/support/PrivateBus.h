#pragma once

#include "support/TemporaryFolder.h"

#include <QDBusConnection>
#include <QProcess>

#include <fstream>

namespace spacemint::support {

/// A message bus with nobody on it, and nobody that it could start, for as long as it lives.
class PrivateBus {
 public:
  PrivateBus() {
    const std::string configuration = folder_ / "bus.conf";
    std::ofstream(configuration) << "<busconfig><type>session</type><listen>unix:dir=" << folder_.path()
                                 << "</listen><policy context='default'>"
                                    "<allow send_destination='*' eavesdrop='true'/>"
                                    "<allow eavesdrop='true'/><allow own='*'/></policy></busconfig>";
    daemon_.start(QStringLiteral("dbus-daemon"),
                  {QStringLiteral("--nofork"), QStringLiteral("--print-address"),
                   QStringLiteral("--config-file"), QString::fromStdString(configuration)});
    while (!daemon_.canReadLine() && daemon_.waitForReadyRead()) {
    }
    address_ = QString::fromUtf8(daemon_.readLine()).trimmed();
  }
  ~PrivateBus() {
    for (const QString& name : names_) QDBusConnection::disconnectFromBus(name);
    daemon_.kill();
    daemon_.waitForFinished();
  }
  PrivateBus(const PrivateBus&) = delete;
  PrivateBus& operator=(const PrivateBus&) = delete;

  const QString& address() const { return address_; }

  /// A connection that is told apart from all others, as that of another program would be.
  QDBusConnection connection() {
    names_ << address_ + QString::number(names_.size());
    return QDBusConnection::connectToBus(address_, names_.last());
  }

 private:
  TemporaryFolder folder_;
  QProcess daemon_;
  QString address_;
  QStringList names_;
};

}  // namespace spacemint::support
