#include "AppServices/UpdateDownload.h"

#include "core/host/AtomicFile.h"

#include <QDir>
#include <QNetworkReply>
#include <QTimer>

namespace spacemint {

namespace {

constexpr int whole = 200;
constexpr int partial = 206;

QString toPath(const std::string& path) {
  return QFile::decodeName(path.c_str());
}

}  // namespace

UpdateDownload::~UpdateDownload() {
  if (!reply_) return;
  reply_->disconnect(this);
  reply_->abort();
}

void UpdateDownload::start(const Update& update, Done done) {
  update_ = update;
  done_ = std::move(done);
  isAccepted_ = false;
  file_ = std::make_unique<QFile>(toPath(pathOf(update)));
  if (!prepareFolder(update.fileName) || !file_->open(QIODevice::ReadWrite)) {
    QTimer::singleShot(0, this, [this] { finish(std::unexpected{UpdateProblem::cannotStore}); });
    return;
  }
  if (file_->size() > update.length) file_->resize(0);
  file_->seek(file_->size());
  if (file_->size() == update.length) {
    QTimer::singleShot(0, this, [this] { finish({}); });
    return;
  }
  reply_ = web_.stream(update.url, file_->size());
  if (!reply_) {
    QTimer::singleShot(0, this, [this] { finish(std::unexpected{UpdateProblem::downloadFailed}); });
    return;
  }
  connect(reply_, &QNetworkReply::readyRead, this, &UpdateDownload::read);
  connect(reply_, &QNetworkReply::finished, this, &UpdateDownload::replyFinished);
}

void UpdateDownload::discard(const Update& update) const {
  QFile::remove(toPath(pathOf(update)));
}

// A folder of another user is refused here: only its owner can change its mode.
bool UpdateDownload::prepareFolder(const std::string& fileName) const {
  const QString path = toPath(folder_);
  if (!createPrivateFolders(folder_) || QFileInfo(path).isSymLink()) return false;
  if (!QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner)) return false;
  const QDir folder{path};
  const auto names =
      folder.entryList({QStringLiteral("*.deb")}, QDir::Files | QDir::NoSymLinks | QDir::Hidden);
  for (const QString& name : names) {
    if (name != QString::fromStdString(fileName)) QFile::remove(folder.filePath(name));
  }
  return true;
}

// Checks the status when the first bytes arrive. Redirections have no bytes, so this is the final answer.
bool UpdateDownload::acceptAnswer() {
  if (isAccepted_) return true;
  const int status = reply_->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
  const QByteArray range = "bytes " + QByteArray::number(file_->size()) + "-" +
                           QByteArray::number(update_.length - 1) + "/" + QByteArray::number(update_.length);
  if (status == whole) {
    isAccepted_ = file_->resize(0) && file_->seek(0);
  } else {
    isAccepted_ = status == partial && reply_->rawHeader("Content-Range") == range;
  }
  return isAccepted_;
}

void UpdateDownload::read() {
  if (!acceptAnswer()) return giveUp(UpdateProblem::downloadFailed);
  const QByteArray bytes = reply_->readAll();
  if (file_->size() + bytes.size() > update_.length) return giveUp(UpdateProblem::fileRefused);
  if (file_->write(bytes) != bytes.size() || !file_->flush()) giveUp(UpdateProblem::cannotStore);
}

void UpdateDownload::replyFinished() {
  const bool isBroken = reply_->error() != QNetworkReply::NoError;
  const int status = reply_->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
  // An error status means that the server refuses the request: start anew next time. Else the connection
  // broke.
  if (isBroken && status >= 400) return giveUp(UpdateProblem::downloadFailed);
  if (isBroken) return finish(std::unexpected{UpdateProblem::downloadFailed});
  if (file_->size() != update_.length) return giveUp(UpdateProblem::fileRefused);
  finish({});
}

void UpdateDownload::giveUp(UpdateProblem problem) {
  file_->close();
  discard(update_);
  finish(std::unexpected{problem});
}

void UpdateDownload::finish(std::expected<void, UpdateProblem> result) {
  file_->close();
  if (reply_) {
    reply_->disconnect(this);
    reply_->abort();
    reply_.clear();
  }
  const Done done = std::exchange(done_, {});
  done(result);
}

}  // namespace spacemint
