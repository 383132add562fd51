#pragma once

#include "AppServices/AppInfo.h"
#include "AppServices/UpdateDownload.h"
#include "AppServices/UpdatePackage.h"
#include "core/host/DefaultsStore.h"

#include <QQmlEngine>
#include <QThreadPool>

#include <chrono>
#include <cstdint>
#include <string>

namespace spacemint {

/// The progress and the result of the search for an update.
struct UpdateState {
  enum class Phase : std::uint8_t { idle, checking, downloading, verifying };
  enum class Result : std::uint8_t { none, upToDate, found, ready, failed };

  Phase phase = Phase::idle;
  /// Of the last search.
  Result result = Result::none;
  UpdateProblem problem = {};
  /// The version that was found.
  std::string version = {};
  /// The path of the package that no program opened.
  std::string package = {};
  /// Whether the user asked for the search. A search that runs by itself only tells if it found an update.
  bool isAsked = false;
};

/// The state in one sentence; empty if there is nothing to tell. Any thread.
std::string updateStatus(const UpdateState& state, const std::string& appName);

/// Finds, downloads and verifies a newer version of the product, and opens it in the system's installer when
/// the user says so. A package that is unsigned, older or of another product is never opened. Main thread
/// only.
class Updates : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("one of the services")
  Q_PROPERTY(bool canCheck READ canCheck NOTIFY changed)
  /// Whether a verified update waits for `install`.
  Q_PROPERTY(bool available READ isAvailable NOTIFY changed)
  Q_PROPERTY(QString status READ status NOTIFY changed)
  Q_PROPERTY(QString version READ version CONSTANT)
  Q_PROPERTY(bool installAutomatically READ installAutomatically WRITE setInstallAutomatically NOTIFY changed)
 public:
  struct Host {
    AppInfo info;
    DefaultsStore& defaults;
    WebClient& web;
    SystemFacts system;
    /// The name of the product's package.
    std::string package;
    /// The folder for downloads.
    std::string folder;
    std::function<std::string()> today;
    /// Opens a file in the desktop's program for it: for a package, the installer. Calls `failed` if none
    /// opens it.
    std::function<void(const std::string& url, std::function<void()> failed)> openUrl;
    std::chrono::milliseconds interval = std::chrono::hours{24};
  };

  static constexpr const char* checkKey = "SUEnableAutomaticChecks";
  static constexpr const char* downloadKey = "SUAutomaticallyUpdate";
  static constexpr const char* checkedOnKey = "SULastCheckedOn";
  /// What the feed said of the update that is ready: version, shown version, URL, length, signature.
  static constexpr const char* readyKey = "SUReadyUpdate";

  explicit Updates(Host host);
  ~Updates() override;

  /// Restores an update that was ready when the program ended. From now on checks once a day, if that is
  /// switched on. Further calls do nothing.
  void start();
  /// Looks for an update and downloads it, because the user asked for it.
  Q_INVOKABLE void checkNow();
  /// Verifies the update again and opens it in the installer.
  Q_INVOKABLE void install();

  bool canCheck() const { return state_.phase == UpdateState::Phase::idle; }
  bool isAvailable() const { return ready_.has_value(); }
  const UpdateState& state() const { return state_; }
  QString status() const;
  QString version() const { return QString::fromStdString(host_.info.version); }
  /// Whether updates that the daily check finds are downloaded.
  bool installAutomatically() const;
  /// Switching this on also switches the daily check on. Switching it off leaves the daily check on.
  void setInstallAutomatically(bool isOn);

 Q_SIGNALS:
  void changed();

 private:
  bool restore();
  void store(const Update& update);
  void checkIfDue();
  void check();
  void feedArrived(const std::optional<WebReply>& reply);
  void download(const Update& update);
  void verify(const Update& update, std::function<void()> next);
  void verified(const Update& update, std::expected<void, UpdateProblem> result,
                const std::function<void()>& next);
  void open(const Update& update);
  void failed(UpdateProblem problem);
  void finish(UpdateState::Result result);
  bool isDownloadWanted() const { return state_.isAsked || installAutomatically(); }

  Host host_;
  UpdateTarget target_;
  std::optional<UpdateKey> key_;
  bool isStarted_ = false;
  UpdateState state_;
  std::optional<Update> ready_;
  UpdateDownload download_;
  /// Files are verified here. It is destroyed first, and waits for a verification that runs.
  QThreadPool pool_;
};

}  // namespace spacemint
