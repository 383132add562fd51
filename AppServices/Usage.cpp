#include "AppServices/Usage.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QUuid>

#include <tuple>

namespace spacemint {

namespace {

constexpr auto projectKey = "phc_Q7mZ2vR9kLx4TnB8wYc3HdJ6pFs1GaE5uKo0NiVrWq2T";
constexpr int received = 200;

}  // namespace

QByteArray usageReport(const AppInfo& info, const std::string& installId, const std::string& systemVersion) {
  const QJsonObject properties{{QStringLiteral("product"), QString::fromStdString(info.slug.value_or(""))},
                               {QStringLiteral("version"), QString::fromStdString(info.version)},
                               {QStringLiteral("os_version"), QString::fromStdString(systemVersion)},
                               {QStringLiteral("arch"), QStringLiteral("arm64")},
                               {QStringLiteral("$process_person_profile"), false},
                               {QStringLiteral("$geoip_disable"), true},
                               {QStringLiteral("$lib"), QStringLiteral("brindlekit")}};
  const QJsonObject report{{QStringLiteral("api_key"), QLatin1String(projectKey)},
                           {QStringLiteral("event"), QStringLiteral("app_active")},
                           {QStringLiteral("distinct_id"), QString::fromStdString(installId)},
                           {QStringLiteral("properties"), properties}};
  return QJsonDocument{report}.toJson(QJsonDocument::Compact);
}

QUrl usageAddress(const std::string& host) {
  const std::string base = host.find("://") == std::string::npos ? "https://" + host : host;
  QUrl url{QString::fromStdString(base), QUrl::StrictMode};
  url.setPath(QStringLiteral("/i/v0/e/"));
  return url;
}

Usage::Usage(Host host)
    : host_(std::move(host)),
      consent_(host_.defaults),
      reports_(std::make_unique<QObject>()) {}

void Usage::setAllowed(bool isAllowed) {
  // If the answer cannot be stored, it stays as it was, and the question comes again.
  std::ignore = consent_.setAllowed(isAllowed);
  if (isAllowed) {
    sendIfDue();
  } else {
    reports_ = std::make_unique<QObject>();
  }
  Q_EMIT allowedChanged();
}

void Usage::sendIfDue() {
  host_.defaults.refresh();  // the user may have withdrawn in another process
  if (!isShared() || !host_.info.slug || !host_.info.usageHost) return;
  const std::string today = host_.today();
  if (host_.defaults.string(UsageConsent::sentOnKey) == today) return;
  const auto id = installId();
  if (!id) return;
  const QByteArray report = usageReport(host_.info, *id, host_.systemVersion);
  host_.web.postJson(usageAddress(*host_.info.usageHost), report, reports_.get(),
                     [this, today, id](const std::optional<WebReply>& reply) {
                       if (!reply || reply->status != received) return;
                       host_.defaults.refresh();
                       if (host_.defaults.string(UsageConsent::installKey) != id) return;
                       std::ignore = host_.defaults.set(UsageConsent::sentOnKey, today);
                     });
}

// Absent if the id cannot be stored: a new id in each report would count one installation several times.
std::optional<std::string> Usage::installId() {
  if (auto stored = host_.defaults.string(UsageConsent::installKey)) return stored;
  std::string id = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper().toStdString();
  if (!host_.defaults.set(UsageConsent::installKey, id)) return {};
  return id;
}

}  // namespace spacemint
