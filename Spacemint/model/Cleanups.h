#pragma once

#include "Spacemint/model/DeveloperTools.h"
#include "Spacemint/model/ScanHistory.h"
#include "Spacemint/model/VolumeWatch.h"
#include "core/cleanup/Cleanup.h"

#include <QObject>
#include <QUuid>

#include <array>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace spacemint {

/// A question that stands between a button and what it removes.
struct Confirmation {
  QUuid id;
  CleanupPlan plan;
};

/// The clean-ups of the application: asks before anything is removed, carries out what was confirmed, and
/// says how it ended. Main thread only; the removal runs on a thread of its own.
class Cleanups : public QObject {
  Q_OBJECT
 public:
  static constexpr const char* trashId = "trash";
  /// The volume's own figures lag behind for so long; longer where another program removed.
  static constexpr std::chrono::seconds settlingTime{1};
  static constexpr std::chrono::seconds settlingTimeOfFileManager{3};
  static constexpr std::array<std::chrono::seconds, 3> laterReadings{
      std::chrono::seconds{3}, std::chrono::seconds{8}, std::chrono::seconds{20}};
  /// A clean-up that runs for longer shows how far it is, and how to stop it.
  static constexpr std::chrono::seconds progressPace{1};

  struct Parts {
    ScanHistory& history;
    DeveloperTools& developerTools;
    VolumeWatch& volume;
    Messages& messages;
  };

  Cleanups(const Parts& parts, const Desktop& desktop, CleanupContext context);
  /// Stops what runs at the next entry.
  ~Cleanups() override;

  const DeletionGuard& guard() const { return context_.guard; }

  /// The question that is asked now.
  const std::optional<Confirmation>& confirmation() const { return confirmation_; }
  /// Asks before it does what is requested, or says why that is refused. For a worktree the question comes
  /// when git has counted its changes.
  void ask(CleanupRequest request);
  void dismiss();
  /// Carries out the plan of this question, if it is still the one that is asked.
  void confirm(const QUuid& id);

  /// Whether a clean-up of this id runs, or one of several items with this path.
  bool isRunning(const std::string& id) const;
  /// Carries out a plan. Nothing while one of the same id runs; refused while another touches the same items.
  void perform(CleanupPlan plan);
  /// Shows the progress of running clean-ups again that the user, or the closing panel, took away.
  void showHiddenProgress();
  /// Stops a clean-up at the next entry; what is gone stays gone.
  void stop(const std::string& id);

  /// Measures the Trash again, for other programs fill and empty it too.
  void refreshTrash();

 Q_SIGNALS:
  void confirmationChanged();
  void runningChanged();

 private:
  struct Run;
  using SharedRun = std::shared_ptr<Run>;

  void show(const CleanupRequest& request, std::expected<CleanupPlan, CleanupFailure> plan);
  void showProgress(const SharedRun& run);
  void measureAgain(const SharedRun& run);
  void refreshTools(const SharedRun& run);
  void settle(const SharedRun& run);
  void finish(const SharedRun& run, std::optional<Bytes> freeAfter);
  void readVolumeForAWhile();

  Parts parts_;
  Desktop desktop_;
  CleanupContext context_;
  std::optional<Confirmation> confirmation_;
  /// Counts what was asked, so that a late answer does not replace a newer question.
  std::uint64_t asked_ = 0;
  std::map<std::string, SharedRun> runs_;
  bool isRefreshingTrash_ = false;
};

}  // namespace spacemint
