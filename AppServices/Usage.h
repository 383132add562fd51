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

/// Reports at most once a calendar day that the product is in use, and only if the user has agreed. Failures
/// are ignored; the next day tries again. Main thread only.
class Usage : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("one of the services")
  /// False until the user has agreed.
  Q_PROPERTY(bool allowed READ isShared WRITE setAllowed NOTIFY allowedChanged)
  /// Whether reports could be sent at all, so that asking for consent makes sense.
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
  bool isOffered() const { return host_.info.slug && host_.info.usageHost; }
  /// Agreeing sends a report at once. Withdrawing removes the id of this installation and aborts a report
  /// that is being sent.
  void setAllowed(bool isAllowed);
  /// Changes the stored answer to its opposite. No answer counts as no.
  Q_INVOKABLE void toggle() { setAllowed(!isShared()); }

  /// Sends today's report if it was not sent yet.
  void sendIfDue();

 Q_SIGNALS:
  void allowedChanged();

 private:
  std::optional<std::string> installId();

  Host host_;
  UsageConsent consent_;
  /// The context of the report that is being sent: destroying it aborts the report.
  std::unique_ptr<QObject> reports_;
};

/// The body of a report: one JSON object.
QByteArray usageReport(const AppInfo& info, const std::string& installId, const std::string& systemVersion);

/// The address for reports; invalid if `host` is no host.
QUrl usageAddress(const std::string& host);

}  // namespace spacemint
