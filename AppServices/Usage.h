#pragma once

#include "AppServices/AppInfo.h"
#include "AppServices/WebClient.h"
#include "AppServices/consent/UsageConsent.h"

#include <QObject>
#include <QQmlEngine>

#include <functional>
#include <optional>
#include <string>

namespace spacemint {

/// Says at most once a calendar day that the product is in use, and only when its user has agreed. Main
/// thread only; nothing is ever said of a failure.
class Usage : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("one of the services")
  /// False until the user has agreed.
  Q_PROPERTY(bool allowed READ isShared WRITE setAllowed NOTIFY allowedChanged)
  /// Whether there is anything to agree to.
  Q_PROPERTY(bool offered READ isOffered CONSTANT)
 public:
  struct Host {
    AppInfo info;
    DefaultsStore& defaults;
    WebClient& web;
    /// The local calendar day, "yyyy-MM-dd".
    std::function<std::string()> today;
    std::string systemVersion;
  };

  explicit Usage(Host host);

  /// Absent until the user has answered.
  std::optional<bool> isAllowed() const { return consent_.isAllowed(); }
  bool isShared() const { return isAllowed().value_or(false); }
  bool isOffered() const { return host_.info.slug.has_value(); }
  /// Agreeing reports at once; withdrawing forgets who this installation was and stops what is under way.
  void setAllowed(bool isAllowed);
  /// Agrees or withdraws: the opposite of what is stored. A question without an answer counts as no.
  Q_INVOKABLE void toggle() { setAllowed(!isShared()); }

  /// Sends today's report if one is due.
  void sendIfDue();

 Q_SIGNALS:
  void allowedChanged();

 private:
  std::optional<std::string> installId();

  Host host_;
  UsageConsent consent_;
  /// Lives as long as a report that is under way may still be sent.
  std::unique_ptr<QObject> reports_;
};

/// What is sent: one JSON object.
QByteArray usageReport(const AppInfo& info, const std::string& installId, const std::string& systemVersion);

/// Where it is sent to; not valid for what is no host.
QUrl usageAddress(const std::string& host);

}  // namespace spacemint
