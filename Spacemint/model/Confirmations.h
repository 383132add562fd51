#pragma once

#include "Spacemint/model/CleanupJobs.h"
#include "Spacemint/model/CurrentFindings.h"

#include <QObject>
#include <QUuid>

#include <functional>
#include <optional>
#include <string>

namespace spacemint {

/// A question that stands between a button and what it destroys.
struct Confirmation {
  QUuid id;
  std::string title;
  /// What is affected, usually a name and a size.
  std::string subject;
  std::optional<std::string> detail = {};
  /// What will happen.
  std::string note;
  std::string actionTitle;
  std::function<void()> perform;
};

/// Asks before anything is removed; only the answer of the question that is shown removes it. Main thread
/// only.
class Confirmations : public QObject {
  Q_OBJECT
 public:
  struct Parts {
    const ScanHistory& history;
    const DeveloperTools& developerTools;
    CleanupJobs& jobs;
    CleanupRuns& runs;
    const ToolRuns& tools;
  };

  struct Words {
    std::string home;
    std::string data;
    std::string locale;
  };

  Confirmations(const Parts& parts, const Desktop& desktop, Words words)
      : parts_(parts),
        desktop_(desktop),
        words_(std::move(words)) {}

  /// What is asked now.
  const std::optional<Confirmation>& current() const { return current_; }
  void dismiss();

  /// `trash` is what moves the file.
  void askToTrash(const FileItem& file, std::function<void(const FileItem&)> trash);
  void askToDelete(const std::string& path, const std::string& name, Bytes size, const std::string& note);
  void askToEmptyTrash(bool mayLookInside);
  void askToDeleteBackup(const DeviceBackup& backup);
  /// Asks when git has told what is not committed.
  void askToRemoveWorktree(const GitWorktree& worktree);
  void askToCleanUp(const DevTools::FoundCleanup& found);
  void askToPruneDocker();
  void askToPruneDockerVolumes();
  void askToRemoveOllamaModel(const DevTools::OllamaModel& model);

 Q_SIGNALS:
  void changed();

 private:
  void show(Confirmation confirmation);
  void askToRemoveWorktree(const GitWorktree& worktree, std::optional<int> changes);
  std::function<void()> performing(CleanupJob job);
  std::string sized(std::string_view name, Bytes size) const;
  std::string amount(Bytes size) const;
  std::string shown(const std::string& path) const;

  Parts parts_;
  Desktop desktop_;
  Words words_;
  std::optional<Confirmation> current_;
};

}  // namespace spacemint
