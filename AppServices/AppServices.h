#pragma once

#include "AppServices/Notices.h"
#include "AppServices/Updates.h"

#include <QObject>
#include <QQmlEngine>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace spacemint {

/// What the services are made of. The store outlives them.
struct AppServicesHost {
  AppInfo info;
  DefaultsStore& defaults;
  SystemFacts system = SystemFacts::current();
  /// The name of the product's package, without which no file counts as its update.
  std::string package;
  /// A folder that only the services use, for downloaded updates.
  std::string updatesFolder;
  /// The local calendar day, "yyyy-MM-dd".
  std::function<std::string()> today;
  /// Opens a web page or a file in the desktop's program for it. Calls `failed`, which may be empty, if none
  /// opens it.
  std::function<void(const std::string& url, std::function<void()> failed)> openUrl;
  /// Limits of time and size for one exchange with a server.
  WebClient::Limits limits = {};
};

/// The services that the maker's products share: usage reports, notices, updates. Without an identifier in
/// the information dictionary there are none, and nothing is sent. Main thread only.
class AppServices : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("made once by the application")
  // Each is null where there is no such service.
  Q_PROPERTY(spacemint::Usage* usage READ usage CONSTANT)
  Q_PROPERTY(spacemint::Notices* notices READ notices NOTIFY started)
  Q_PROPERTY(spacemint::Updates* updates READ updates NOTIFY started)
 public:
  /// An entry for the application's menu.
  struct MenuItem {
    QString title;
    std::function<void()> choose;
    /// Whether the menu shows a check mark; empty for an entry that is not a switch.
    std::function<bool()> isOn = {};
  };

  explicit AppServices(AppServicesHost host);
  ~AppServices() override;

  /// Begins to look for notices, and for updates where `withUpdates` says so and the dictionary names a feed.
  /// Only the first call counts.
  void start(bool withUpdates);

  /// What the dictionary says; the name is the process's where it says none.
  const std::string& name() const { return host_.info.name; }
  const std::string& version() const { return host_.info.version; }
  const std::optional<std::string>& slug() const { return host_.info.slug; }
  const std::optional<std::string>& site() const { return host_.info.site; }

  Usage* usage() const { return usage_.get(); }
  Notices* notices() const { return notices_.get(); }
  Updates* updates() const { return updates_.get(); }
  std::vector<MenuItem> menuItems() const;

 Q_SIGNALS:
  void started();

 private:
  AppServicesHost host_;
  std::unique_ptr<WebClient> web_;
  std::unique_ptr<Usage> usage_;
  std::unique_ptr<Notices> notices_;
  std::unique_ptr<Updates> updates_;
};

}  // namespace spacemint
