#include "Spacemint/desktop/linux/RunningInstance.h"

#include "Spacemint/desktop/linux/ActivationToken.h"
#include "core/base/Log.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QUrl>

namespace spacemint {

namespace {

const QString name = QStringLiteral("app.spacemint.Spacemint");
const QString instancePath = QStringLiteral("/app/spacemint/Spacemint");
// The key of the token in the platform data of org.freedesktop.Application.
const QString activationToken = QStringLiteral("activation-token");
const QString applicationInterface = QStringLiteral("org.freedesktop.Application");

}  // namespace

RunningInstance::RunningInstance(QDBusConnection bus, Kind kind) : bus_(std::move(bus)), kind_(kind) {}

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

void RunningInstance::askOther(LaunchAction action, const std::string& path) const {
  const QVariantMap platformData{{activationToken, ActivationToken::ofThisProcess()}};
  if (!path.empty()) {
    const QString url = QUrl::fromLocalFile(QString::fromStdString(path)).toString(QUrl::FullyEncoded);
    bus_.call(QDBusMessage::createMethodCall(name, instancePath, applicationInterface, QStringLiteral("Open"))
              << QStringList{url} << platformData);
    return;
  }
  bus_.call(QDBusMessage::createMethodCall(name, instancePath, applicationInterface,
                                           QStringLiteral("ActivateAction"))
            << QString::fromUtf8(nameOf(action)) << QVariantList{} << platformData);
}

void RunningInstance::Activate(const QVariantMap& platformData) {
  ask(LaunchAction::open, platformData);
}

// Several things cannot be shown at once, so it is the first one.
void RunningInstance::Open(const QStringList& uris, const QVariantMap& platformData) {
  const QUrl url = uris.isEmpty() ? QUrl{} : QUrl{uris.front()};
  if (!url.isLocalFile()) return ask(LaunchAction::open, platformData);
  ActivationToken::use(platformData.value(activationToken).toString());
  Q_EMIT askedFor(url.toLocalFile().toStdString());
}

void RunningInstance::ActivateAction(const QString& name, const QVariantList& /*parameter*/,
                                     const QVariantMap& platformData) {
  ask(launchActionNamed(name.toStdString()), platformData);
}

void RunningInstance::ask(LaunchAction action, const QVariantMap& platformData) {
  ActivationToken::use(platformData.value(activationToken).toString());
  Q_EMIT asked(action);
}

}  // namespace spacemint
