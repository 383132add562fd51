#pragma once

#include "Spacemint/model/AppModel.h"
#include "support/FakeDesktop.h"
#include "support/TemporaryFolder.h"
#include "support/TreeBuilder.h"

#include <gmock/gmock.h>

namespace spacemint::support {

using namespace std::chrono_literals;

/// About a megabyte, in whole blocks of any file system.
inline constexpr Bytes MB = 1'024'000;
inline constexpr Bytes GB = 1'000'000'000;
inline constexpr Date morning{std::chrono::sys_days{std::chrono::year{2026} / 3 / 2} + 8h};

/// Answers what a test sets.
class FakeJournal final : public EventJournal {
 public:
  std::uint64_t currentEventID(const JournalQuery&) override { return id; }
  std::expected<FolderChanges, JournalError> changes(const JournalQuery& query) override {
    queries.push_back(query);
    return answer;
  }

  std::expected<MeasuredChanges, JournalError> measuredChanges(const JournalQuery&) override {
    ++measurements;
    return measured;
  }

  std::uint64_t id = 0;
  std::expected<FolderChanges, JournalError> answer = std::unexpected(JournalError::notRecording);
  std::expected<MeasuredChanges, JournalError> measured = std::unexpected(JournalError::notRecording);
  int measurements = 0;
  std::vector<JournalQuery> queries;
};

/// The model in a home folder of its own. The test lets the time pass.
class ModelFixture : public testing::Test {
 protected:
  ModelFixture();

  /// Makes the model anew.
  AppModel& makeModel() { return makeModel(journal, desktop.desktop()); }
  AppModel& makeModel(EventJournal& events, const Desktop& on);
  /// Makes the model, starts it, and runs all that it does without time passing.
  AppModel& startModel();

  std::string inHome(std::string_view name) const { return home + "/" + std::string{name}; }
  /// Makes a file that takes space on the disk, and its folders.
  void addFile(std::string_view name, Bytes size) const;
  /// Adds a program; no others are found, so that no test runs what is installed.
  void addProgram(std::string_view name, std::string_view script) const;
  bool exists(std::string_view name) const;
  std::string message() const { return model->messages().message().value_or(""); }
  std::string actionTitle() const;
  /// Presses the button of the confirmation that is shown.
  void confirm() { model->cleanups().confirm(model->cleanups().confirmation()->id); }
  /// Stores a scan of the home folder, with one file, as of this date.
  void storeScan(Date date, Bytes size = 300 * MB) const { storeHome(date, {file("old", size)}); }
  /// In whole MB, because a file system may need a block or two more for a file's own data. 0 when the scan
  /// does not have the item.
  Bytes sizeInScan(std::string_view name) const;

  // Invented scans of the home folder.

  void storeHome(Date date, std::vector<Node> children, Bytes free = 120 * GB, Coverage coverage = {}) const;
  /// Stores two scans between which this many folders grew, each less than the one before it.
  void storeGrowth(int folders) const;
  /// Stores two scans, three days apart, with all kinds of changes: a file that is new, a folder whose growth
  /// is spread, a folder that shrank, a file that is gone.
  void storeChanges() const;
  /// Grows a file of the home folder for so many refreshes of two seconds, and takes as much from the volume.
  /// A fake recorder reports the folder.
  void growFile(const std::string& folderName, const std::string& name, int refreshes, Bytes each);
  /// A chain of folders; the innermost has these children.
  static Node nested(std::string_view path, std::vector<Node> children);
  static std::vector<Node> numbered(const std::string& name, int count, Bytes largest, Bytes step = MB);

  // The files that the analysis reads itself.

  /// A backup of a device; `backupTree` is its part of the scan.
  void addBackup(std::string_view lastDate) const;
  static Node backupTree(Bytes size);
  /// A worktree of the repository "shop". Without a date its repository is gone.
  void addWorktree(const std::string& name, std::optional<Date> lastUsed) const;
  static Node worktreeTree(std::string name, Bytes size);

  // The output of the tools.

  static std::string prints(std::string_view text);
  static std::string dockerUsage();
  static std::string ollamaList();

  TemporaryFolder folder;
  const std::string home = folder / "home";
  FakeDesktop desktop;
  DefaultsStore defaults{folder / "settings.json"};
  SnapshotStore store{folder / "history"};
  FakeJournal journal;
  /// Root of a scan of the whole disk.
  std::string disk = folder.path();
  std::string locale = "en_US";
  bool hasAccess = true;
  /// What is read of the volume for its account.
  std::optional<VolumeFacts> volumeFacts;
  /// Whether this is an installed build, which shows notifications.
  bool isApplication = true;
  std::unique_ptr<AppModel> model;
};

}  // namespace spacemint::support
