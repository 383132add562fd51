#pragma once

#include "AppServices/UpdateChoice.h"
#include "AppServices/WebClient.h"

#include <QFile>
#include <QObject>
#include <QPointer>

#include <expected>
#include <functional>
#include <memory>
#include <string>

class QNetworkReply;

namespace spacemint {

/// Brings the file of an update into a private folder. What came before a break is kept, and the next attempt
/// goes on from there. Nothing here is trusted yet. Main thread only.
class UpdateDownload : public QObject {
  Q_OBJECT
 public:
  /// Tells whether the file is there, as long as the update says and not yet checked further.
  using Done = std::function<void(std::expected<void, UpdateProblem>)>;

  /// `folder` holds nothing but downloads; it is made when it is needed (0700).
  UpdateDownload(WebClient& web, std::string folder) : web_(web), folder_(std::move(folder)) {}
  ~UpdateDownload() override;
  Q_DISABLE_COPY_MOVE(UpdateDownload)

  /// One at a time. Files of other updates are removed.
  void start(const Update& update, Done done);
  /// Where its file is, once it is there.
  std::string pathOf(const Update& update) const { return folder_ + "/" + update.fileName; }
  /// Forgets what came of this update, because it was not what it should be.
  void discard(const Update& update) const;

 private:
  bool prepareFolder(const std::string& fileName) const;
  bool acceptAnswer();
  void read();
  void replyFinished();
  void giveUp(UpdateProblem problem);
  void finish(std::expected<void, UpdateProblem> result);

  WebClient& web_;
  std::string folder_;
  Update update_;
  Done done_;
  std::unique_ptr<QFile> file_;
  QPointer<QNetworkReply> reply_;
  bool isAccepted_ = false;
};

}  // namespace spacemint
