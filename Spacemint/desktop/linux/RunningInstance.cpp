#include "Spacemint/desktop/linux/RunningInstance.h"

#include "core/base/Log.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>

namespace spacemint {

namespace {

const QString name = QStringLiteral("app.spacemint.Spacemint");
const QString instancePath = QStringLiteral("/app/spacemint/Spacemint");
const QString applicationInterface = QStringLiteral("org.freedesktop.Application");

}  // namespace

RunningInstance::RunningInstance(const QDBusConnection& bus, Kind kind) : bus_(bus), kind_(kind) {}

RunningInstance::~RunningInstance() {
  if (!bus_.isConnected()) return;
  bus_.unregisterObject(instancePath);
  bus_.unregisterService(name);
}

bool RunningInstance::become() {
  if (!bus_.isConnected()) {
    log(LogLevel::info, "there is no session bus");
    return true;
  }
  bus_.registerObject(instancePath, this, QDBusConnection::ExportScriptableSlots);
  QDBusConnectionInterface* interface = bus_.interface();
  connect(interface, &QDBusConnectionInterface::serviceUnregistered, this, [this](const QString& lost) {
    if (lost == name) Q_EMIT replaced();
  });
  const bool isWindows = kind_ == Kind::windows;
  const auto reply = interface->registerService(name,
                                                isWindows ? QDBusConnectionInterface::ReplaceExistingService
                                                          : QDBusConnectionInterface::DontQueueService,
                                                isWindows ? QDBusConnectionInterface::DontAllowReplacement
                                                          : QDBusConnectionInterface::AllowReplacement);
  return !reply.isValid() || reply.value() == QDBusConnectionInterface::ServiceRegistered;
}

void RunningInstance::showOther() const {
  bus_.call(
      QDBusMessage::createMethodCall(name, instancePath, applicationInterface, QStringLiteral("Activate"))
      << QVariantMap{});
}

void RunningInstance::Activate(const QVariantMap& /*platformData*/) {
  Q_EMIT activated();
}

void RunningInstance::Open(const QStringList& /*uris*/, const QVariantMap& /*platformData*/) {
  Q_EMIT activated();
}

void RunningInstance::ActivateAction(const QString& /*name*/, const QVariantList& /*parameter*/,
                                     const QVariantMap& /*platformData*/) {
  Q_EMIT activated();
}

}  // namespace spacemint
