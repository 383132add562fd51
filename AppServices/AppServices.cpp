#include "AppServices/AppServices.h"

#include "core/base/Translation.h"

#include <QCoreApplication>

namespace spacemint {

AppServices::AppServices(AppServicesHost host) : host_(std::move(host)) {
  if (host_.info.name.empty()) host_.info.name = QCoreApplication::applicationName().toStdString();
  if (!host_.info.identifier) return;
  web_ = std::make_unique<WebClient>(host_.info.name, host_.limits);
  usage_ = std::make_unique<Usage>(Usage::Host{.info = host_.info,
                                               .defaults = host_.defaults,
                                               .web = *web_,
                                               .today = host_.today,
                                               .systemVersion = host_.system.version});
}

AppServices::~AppServices() = default;

void AppServices::start(bool withUpdates) {
  if (!usage_ || notices_) return;
  if (withUpdates && host_.info.updateFeed) {
    updates_ = std::make_unique<Updates>(Updates::Host{.info = host_.info,
                                                       .defaults = host_.defaults,
                                                       .web = *web_,
                                                       .system = host_.system,
                                                       .package = host_.package,
                                                       .folder = host_.updatesFolder,
                                                       .today = host_.today,
                                                       .openUrl = host_.openUrl});
    updates_->start();
  }
  notices_ = std::make_unique<Notices>(Notices::Host{.info = host_.info,
                                                     .defaults = host_.defaults,
                                                     .web = *web_,
                                                     .usage = *usage_,
                                                     .today = host_.today,
                                                     .openUrl = host_.openUrl});
  Q_EMIT started();
  notices_->start();
}

std::vector<AppServices::MenuItem> AppServices::menuItems() const {
  std::vector<MenuItem> items;
  if (updates_) {
    items.push_back({.title = QString::fromStdString(i18n("Check for Updates…")),
                     .choose = [updates = updates_.get()] { updates->checkNow(); }});
  }
  if (usage_ && usage_->isOffered()) {
    items.push_back({.title = QString::fromStdString(i18n("Share Anonymous Usage")),
                     .choose = [usage = usage_.get()] { usage->toggle(); },
                     .isOn = [usage = usage_.get()] { return usage->isShared(); }});
  }
  return items;
}

}  // namespace spacemint
