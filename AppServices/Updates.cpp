#include "AppServices/Updates.h"

#include "AppServices/Base64.h"

#include <QTimer>

namespace spacemint {

Updates::Updates(Host host)
    : host_(std::move(host)),
      target_{.version = host_.info.version, .package = host_.package, .system = host_.system},
      key_(bytesOfBase64<std::tuple_size_v<UpdateKey>>(host_.info.updateKey.value_or(""))),
      download_(host_.web, host_.folder) {}

Updates::~Updates() {
  pool_.waitForDone();
}

void Updates::start() {
  if (isStarted_) return;
  isStarted_ = true;
  checkIfDue();
  auto* timer = new QTimer(this);
  timer->setTimerType(Qt::VeryCoarseTimer);
  connect(timer, &QTimer::timeout, this, &Updates::checkIfDue);
  timer->start(host_.interval);
}

void Updates::checkNow() {
  state_.isAsked = true;
  if (canCheck()) return check();
  Q_EMIT changed();  // what goes on is told from now on
}

void Updates::install() {
  if (!isAvailable() || !canCheck()) return;
  state_.isAsked = true;
  verify(*ready_, [this, update = *ready_] { open(update); });
}

QString Updates::status() const {
  return QString::fromStdString(updateStatus(state_, host_.info.name));
}

bool Updates::installAutomatically() const {
  return host_.defaults.boolean(downloadKey).value_or(false);
}

void Updates::setInstallAutomatically(bool isOn) {
  // What cannot be stored stays as it was, and the switch shows that.
  host_.defaults.set(checkKey, true);
  host_.defaults.set(downloadKey, isOn);
  Q_EMIT changed();
  if (isOn) checkIfDue();
}

void Updates::checkIfDue() {
  host_.defaults.refresh();
  if (!canCheck() || !host_.defaults.boolean(checkKey).value_or(false)) return;
  if (host_.defaults.string(checkedOnKey) == host_.today()) return;
  state_.isAsked = false;
  check();
}

void Updates::check() {
  if (!key_) return failed(UpdateProblem::noKey);
  state_.phase = UpdateState::Phase::checking;
  Q_EMIT changed();
  const QUrl feed{QString::fromStdString(host_.info.updateFeed.value_or("")), QUrl::StrictMode};
  host_.web.get(feed, this, [this](const std::optional<WebReply>& reply) { feedArrived(reply); });
}

void Updates::feedArrived(const std::optional<WebReply>& reply) {
  constexpr int found = 200;
  if (!reply || reply->status != found) return failed(UpdateProblem::feedUnreachable);
  const auto items = parseUpdateFeed({reply->body.constData(), static_cast<std::size_t>(reply->body.size())});
  if (!items) return failed(UpdateProblem::feedUnreadable);
  host_.defaults.set(checkedOnKey, host_.today());
  const auto update = newestUpdate(*items, target_);
  if (!update) return failed(update.error());
  if (!*update) return finish(UpdateState::Result::upToDate);
  state_.version = (*update)->shownVersion;
  if (!isDownloadWanted()) return finish(UpdateState::Result::found);
  download(**update);
}

void Updates::download(const Update& update) {
  // The file of an earlier version is not kept beside the new one.
  ready_.reset();
  state_.phase = UpdateState::Phase::downloading;
  Q_EMIT changed();
  download_.start(update, [this, update](const std::expected<void, UpdateProblem>& result) {
    if (!result) return failed(result.error());
    verify(update, [this] { finish(UpdateState::Result::ready); });
  });
}

void Updates::verify(const Update& update, std::function<void()> next) {
  state_.phase = UpdateState::Phase::verifying;
  Q_EMIT changed();
  pool_.start(
      [this, update, path = download_.pathOf(update), key = *key_, target = target_, next = std::move(next)] {
        const auto result = verifyPackage(path, update, key, target);
        // Into this object's queue, which goes with it: the destructor has waited for this line.
        QMetaObject::invokeMethod(
            this, [this, update, result, next] { verified(update, result, next); }, Qt::QueuedConnection);
      });
}

void Updates::verified(const Update& update, std::expected<void, UpdateProblem> result,
                       const std::function<void()>& next) {
  if (result) {
    ready_ = update;
    return next();
  }
  ready_.reset();
  download_.discard(update);
  failed(result.error());
}

void Updates::open(const Update& update) {
  const QUrl url = QUrl::fromLocalFile(QFile::decodeName(download_.pathOf(update).c_str()));
  host_.openUrl(url.toEncoded().toStdString());
  finish(UpdateState::Result::ready);
}

void Updates::failed(UpdateProblem problem) {
  state_.problem = problem;
  finish(UpdateState::Result::failed);
}

void Updates::finish(UpdateState::Result result) {
  const bool isNews = state_.isAsked || result == UpdateState::Result::found;
  state_.phase = UpdateState::Phase::idle;
  state_.result = isAvailable() && !isNews ? UpdateState::Result::ready : result;
  Q_EMIT changed();
}

}  // namespace spacemint
