#pragma once

#include "AppServices/AppInfo.h"
#include "AppServices/UpdateDownload.h"
#include "AppServices/UpdatePackage.h"
#include "AppServices/UpdateText.h"
#include "core/host/DefaultsStore.h"

#include <QQmlEngine>
#include <QThreadPool>

#include <chrono>

namespace spacemint {

/// Finds, downloads and checks a newer version of the product, and hands it to the system's installer when
/// the user says so. Nothing that is unsigned, older or of another product is ever opened. Main thread only.
class Updates : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("one of the services")
  Q_PROPERTY(bool canCheck READ canCheck NOTIFY changed)
  /// A checked update waits for `install`.
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
    /// Where downloads are kept.
    std::string folder;
    std::function<std::string()> today;
    /// Opens a file in the program of the desktop that is for it: for a package, the installer.
    std::function<void(const std::string& url)> openUrl;
    std::chrono::milliseconds interval = std::chrono::hours{24};
  };

  static constexpr const char* checkKey = "SUEnableAutomaticChecks";
  static constexpr const char* downloadKey = "SUAutomaticallyUpdate";
  static constexpr const char* checkedOnKey = "SULastCheckedOn";

  explicit Updates(Host host);
  ~Updates() override;

  /// Checks once a day from now on, where that is switched on; only the first call counts.
  void start();
  /// Looks for an update and brings it here, for a person who waits for the answer.
  Q_INVOKABLE void checkNow();
  /// Checks the update once more and hands it to the installer.
  Q_INVOKABLE void install();

  bool canCheck() const { return state_.phase == UpdateState::Phase::idle; }
  bool isAvailable() const { return ready_.has_value(); }
  const UpdateState& state() const { return state_; }
  QString status() const;
  QString version() const { return QString::fromStdString(host_.info.version); }
  /// Whether an update that was found by itself is downloaded too.
  bool installAutomatically() const;
  /// Also switches the daily check on, which stays on when this is switched off.
  void setInstallAutomatically(bool isOn);

 Q_SIGNALS:
  void changed();

 private:
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
  /// Where files are checked. Destroyed first, and waits for a check that is under way.
  QThreadPool pool_;
};

}  // namespace spacemint
