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

/// Downloads the file of an update into a private folder. If the connection breaks, the next attempt
/// continues where it broke. The file is not verified here. Main thread only.
class UpdateDownload : public QObject {
  Q_OBJECT
 public:
  /// Success: the file is complete, with the length that the update says. Its content is not verified.
  using Done = std::function<void(std::expected<void, UpdateProblem>)>;

  /// `folder` is for downloads only. It is made, with mode 0700, when it is needed.
  UpdateDownload(WebClient& web, std::string folder) : web_(web), folder_(std::move(folder)) {}
  ~UpdateDownload() override;
  Q_DISABLE_COPY_MOVE(UpdateDownload)

  /// Only one download at a time. Removes the files of other updates.
  void start(const Update& update, Done done);
  /// The path of the update's file.
  std::string pathOf(const Update& update) const { return folder_ + "/" + update.fileName; }
  /// Removes the update's file.
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
