#pragma once

#include "Spacemint/model/Remeasure.h"
#include "Spacemint/model/VolumeWatch.h"
#include "core/cleanup/CleanupFailure.h"

#include <QObject>

#include <array>
#include <functional>
#include <set>

namespace spacemint {

/// Something that frees space, as data: what to do, and what to say and look at when it is done.
struct CleanupJob {
  using Failure = std::optional<CleanupFailure>;

  /// What it works on: two jobs of one id never run at once.
  std::string id;
  /// What was done, as the start of a sentence: "Emptied the Trash".
  std::string label;
  /// How much it should free, where that is known.
  std::optional<Bytes> estimate = {};
  /// Paths of the current scan that will be other than they were.
  std::vector<std::string> remeasure = {};
  /// What cannot be measured after success is taken to be empty.
  bool assumeEmptied = false;
  /// Does it, on other threads.
  std::function<QFuture<Failure>()> work;
  /// What else to wait for after it; may be empty.
  std::function<QFuture<bool>()> then = {};
};

/// Runs clean-ups that were confirmed, and says how they ended. Main thread only.
class CleanupRuns : public QObject {
  Q_OBJECT
 public:
  static constexpr const char* trashId = "trash";
  /// The volume's own figures lag behind for so long.
  static constexpr std::chrono::seconds settlingTime{1};
  static constexpr std::array<std::chrono::seconds, 3> laterReadings{
      std::chrono::seconds{3}, std::chrono::seconds{8}, std::chrono::seconds{20}};

  struct Parts {
    VolumeWatch& volume;
    Remeasure& remeasure;
    Messages& messages;
  };

  CleanupRuns(const Parts& parts, const Desktop& desktop, std::string locale)
      : parts_(parts),
        desktop_(desktop),
        locale_(std::move(locale)) {}

  const std::set<std::string>& running() const { return running_; }
  bool isRunning(const std::string& id) const { return running_.contains(id); }
  /// False when something is said to run that runs already.
  bool setRunning(const std::string& id, bool isRunning);

  /// Nothing when a job of the same id runs.
  void perform(CleanupJob job);

 Q_SIGNALS:
  void runningChanged();

 private:
  struct Run;
  using SharedRun = std::shared_ptr<Run>;

  QFuture<bool> remeasure(const Run& run);
  void readVolumeForAWhile();
  void report(const Run& run, std::optional<Bytes> freeAfter);
  std::optional<MessageAction> actionFor(const CleanupJob::Failure& failure);

  Parts parts_;
  Desktop desktop_;
  std::string locale_;
  std::set<std::string> running_;
};

}  // namespace spacemint
