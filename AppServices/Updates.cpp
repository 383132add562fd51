#include "AppServices/Updates.h"

#include "core/base/Translation.h"

#include <QPointer>
#include <QTimer>

#include <tuple>

namespace spacemint {

namespace {

std::string problemText(const UpdateState& state) {
  switch (state.problem) {
    case UpdateProblem::noKey:
      return i18n("This copy cannot check whether an update is genuine.");
    case UpdateProblem::feedUnreachable:
      return i18n("The list of updates could not be reached.");
    case UpdateProblem::feedUnreadable:
      return i18n("The list of updates could not be read.");
    case UpdateProblem::downloadFailed:
      return i18n("The update could not be downloaded. Try again later.");
    case UpdateProblem::cannotStore:
      return i18n("The update could not be stored.");
    case UpdateProblem::noInstaller:
      return i18n("No program opened the update. To install it, run in a terminal: {command}",
                  {{"command", "sudo apt install '" + state.package + "'"}});
    case UpdateProblem::feedRefused:
    case UpdateProblem::fileRefused:
    case UpdateProblem::signatureRefused:
    case UpdateProblem::packageRefused:
      return i18n("The update is not genuine and was not installed.");
  }
  return {};
}

std::string resultText(const UpdateState& state, const std::string& appName) {
  switch (state.result) {
    case UpdateState::Result::none:
      return {};
    case UpdateState::Result::upToDate:
      return state.isAsked ? i18n("{application} is up to date.", {{"application", appName}}) : "";
    case UpdateState::Result::found:
      return i18n("Version {version} is available.", {{"version", state.version}});
    case UpdateState::Result::ready:
      return i18n("Version {version} is ready to install.", {{"version", state.version}});
    case UpdateState::Result::failed:
      return state.isAsked ? problemText(state) : "";
  }
  return {};
}

}  // namespace

std::string updateStatus(const UpdateState& state, const std::string& appName) {
  switch (state.phase) {
    case UpdateState::Phase::idle:
      return resultText(state, appName);
    case UpdateState::Phase::checking:
      return state.isAsked ? i18n("Checking for updates…") : "";
    case UpdateState::Phase::downloading:
      return i18n("Downloading version {version}…", {{"version", state.version}});
    case UpdateState::Phase::verifying:
      return i18n("Checking version {version}…", {{"version", state.version}});
  }
  return {};
}

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
  if (!restore()) checkIfDue();
  auto* timer = new QTimer(this);
  timer->setTimerType(Qt::VeryCoarseTimer);
  connect(timer, &QTimer::timeout, this, &Updates::checkIfDue);
  timer->start(host_.interval);
}

void Updates::checkNow() {
  state_.isAsked = true;
  if (canCheck()) return check();
  Q_EMIT changed();  // from now on the status tells about the check that runs
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
  // If this cannot be stored, the switch goes back.
  std::ignore = host_.defaults.set(checkKey, true);
  std::ignore = host_.defaults.set(downloadKey, isOn);
  Q_EMIT changed();
  if (isOn) checkIfDue();
}

// Whether there is an update to verify; `verified` then goes on to the daily check.
bool Updates::restore() {
  const auto stored = host_.defaults.strings(readyKey);
  constexpr std::size_t fields = 5;
  if (!stored || stored->size() != fields || !key_) return false;
  const auto& all = *stored;
  const auto update = newestUpdate(
      {{.version = all[0], .shortVersion = all[1], .url = all[2], .length = all[3], .signature = all[4]}},
      target_);
  // It is installed by now, or its file is gone.
  if (!update || !*update || !QFile::exists(QFile::decodeName(download_.pathOf(**update).c_str()))) {
    std::ignore = host_.defaults.remove(readyKey);
    return false;
  }
  state_.version = (*update)->shownVersion;
  verify(**update, [this] {
    finish(UpdateState::Result::ready);
    checkIfDue();
  });
  return true;
}

void Updates::store(const Update& update) {
  const QByteArray signature{reinterpret_cast<const char*>(update.signature.data()),
                             static_cast<qsizetype>(update.signature.size())};
  // If this cannot be stored, the update is downloaded again after a restart.
  std::ignore = host_.defaults.set(
      readyKey, DefaultsArray{update.version, update.shownVersion,
                              update.url.toString(QUrl::FullyEncoded).toStdString(),
                              std::to_string(update.length), signature.toBase64().toStdString()});
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
  std::ignore = host_.defaults.set(checkedOnKey, host_.today());
  const auto update = newestUpdate(*items, target_);
  if (!update) return failed(update.error());
  if (!*update) return finish(UpdateState::Result::upToDate);
  state_.version = (*update)->shownVersion;
  const bool isReady = ready_ && ready_->version == (*update)->version;
  if (!isDownloadWanted()) return finish(isReady ? UpdateState::Result::ready : UpdateState::Result::found);
  download(**update);
}

void Updates::download(const Update& update) {
  // The download removes the files of other versions.
  ready_.reset();
  std::ignore = host_.defaults.remove(readyKey);
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
        // This object still exists: its destructor waits for the pool.
        QMetaObject::invokeMethod(
            this, [this, update, result, next] { verified(update, result, next); }, Qt::QueuedConnection);
      });
}

void Updates::verified(const Update& update, std::expected<void, UpdateProblem> result,
                       const std::function<void()>& next) {
  if (result) {
    ready_ = update;
    store(update);
    return next();
  }
  ready_.reset();
  std::ignore = host_.defaults.remove(readyKey);
  download_.discard(update);
  failed(result.error());
  checkIfDue();
}

void Updates::open(const Update& update) {
  finish(UpdateState::Result::ready);
  const std::string path = download_.pathOf(update);
  const QUrl url = QUrl::fromLocalFile(QFile::decodeName(path.c_str()));
  host_.openUrl(url.toEncoded().toStdString(), [self = QPointer{this}, path] {
    if (!self) return;
    self->state_.package = path;
    self->failed(UpdateProblem::noInstaller);
  });
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
