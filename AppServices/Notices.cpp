#include "AppServices/Notices.h"

#include "core/base/Translation.h"

#include <QTimer>

#include <algorithm>
#include <tuple>

namespace spacemint {

QUrl feedAddress(const std::string& site, const std::string& slug) {
  QUrl url{QString::fromStdString(site), QUrl::StrictMode};
  QString path = url.path();
  if (!path.endsWith(QLatin1Char('/'))) path += QLatin1Char('/');
  url.setPath(path + QString::fromStdString(slug) + QStringLiteral(".json"));
  return url;
}

Notices::Notices(Host host) : host_(std::move(host)) {
  connect(&host_.usage, &Usage::allowedChanged, this, &Notices::usageAnswered);
}

void Notices::start() {
  if (isStarted_) return;
  isStarted_ = true;
  refresh();
  auto* timer = new QTimer(this);
  timer->setTimerType(Qt::VeryCoarseTimer);
  connect(timer, &QTimer::timeout, this, &Notices::refresh);
  timer->start(host_.interval);
}

void Notices::refresh() {
  host_.usage.sendIfDue();
  if (current_) return;
  if (!host_.usage.isAllowed() && host_.usage.isOffered()) {
    show(UsageQuestion{});
  } else {
    showNextMessage();
  }
}

void Notices::showNextMessage() {
  if (!host_.info.slug || !host_.info.site) return;
  host_.web.get(feedAddress(*host_.info.site, *host_.info.slug), this,
                [this](const std::optional<WebReply>& reply) { showFrom(reply); });
}

void Notices::showFrom(const std::optional<WebReply>& reply) {
  constexpr int found = 200;
  if (current_ || !reply || reply->status != found) return;
  const auto feed = MessageFeed::parse(reply->body.toStdString());
  if (!feed || !host_.info.slug) return;
  auto seen = seen_;
  if (const auto stored = host_.defaults.strings(seenKey)) seen.insert(stored->begin(), stored->end());
  const AppMessage* message = feed->next({.slug = *host_.info.slug,
                                          .version = host_.info.version,
                                          .today = host_.today(),
                                          .seen = std::move(seen)});
  if (message) show(*message);
}

QString Notices::closeHelp() {
  return QString::fromStdString(i18nc("button", "Close"));
}

void Notices::dismiss() {
  if (!current_) return;
  if (isAsking()) return answerUsage(false);
  remember(std::get<AppMessage>(*current_).id);
  finish();
}

void Notices::answerUsage(bool isAllowed) {
  host_.usage.setAllowed(isAllowed);
}

void Notices::choosePrimary() {
  if (!current_) return;
  if (isAsking()) return answerUsage(true);
  if (const auto& link = std::get<AppMessage>(*current_).link) host_.openUrl(link->url, {});
  dismiss();
}

void Notices::chooseSecondary() {
  if (isAsking()) answerUsage(false);
}

void Notices::show(Notice notice) {
  text_ = noticeText(notice, host_.info.name);
  current_ = std::move(notice);
  Q_EMIT currentChanged();
}

void Notices::finish() {
  current_.reset();
  Q_EMIT currentChanged();
  showNextMessage();
}

// The user may also answer by the switch in the settings.
void Notices::usageAnswered() {
  if (isAsking()) finish();
}

void Notices::remember(const std::string& id) {
  seen_.insert(id);
  host_.defaults.refresh();
  auto seen = host_.defaults.strings(seenKey).value_or(std::vector<std::string>{});
  if (std::ranges::find(seen, id) != seen.end()) return;
  seen.push_back(id);
  // If the id cannot be stored, it is remembered until the program ends.
  std::ignore = host_.defaults.set(seenKey, DefaultsArray{seen.begin(), seen.end()});
}

}  // namespace spacemint
