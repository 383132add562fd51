#pragma once

#include "Spacemint/model/AppModel.h"
#include "support/FakeDesktop.h"
#include "support/TemporaryFolder.h"

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

  std::uint64_t id = 0;
  std::expected<FolderChanges, JournalError> answer = std::unexpected(JournalError::notRecording);
  std::vector<JournalQuery> queries;
};

/// The model in a home folder of its own, on a desktop whose time the test moves.
class ModelFixture : public testing::Test {
 protected:
  ModelFixture();

  /// A model as the application makes it; more than one at a time is not needed.
  AppModel& makeModel();
  /// The same after `start`, with what it does by itself done.
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
  /// Stores a scan of the home folder as one that was made at that time.
  void storeScan(Date date, Bytes size = 300 * MB) const;
  /// In whole MB: a file system may need a block or two more to remember where a file lies.
  Bytes sizeInScan(std::string_view name) const;

  TemporaryFolder folder;
  const std::string home = folder / "home";
  FakeDesktop desktop;
  DefaultsStore defaults{folder / "settings.json"};
  SnapshotStore store{folder / "history"};
  FakeJournal journal;
  std::string locale = "en_US";
  bool hasAccess = true;
  bool isApplication = true;
  std::unique_ptr<AppModel> model;
};

}  // namespace spacemint::support
