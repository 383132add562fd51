#pragma once

#include "core/cleanup/Cleanup.h"
#include "core/history/SnapshotStore.h"
#include "core/host/TrashCan.h"
#include "core/scan/ScanTiming.h"
#include "spacemintctl/Answer.h"
#include "spacemintctl/browse/BrowseTree.h"
#include "spacemintctl/browse/BrowseView.h"
#include "spacemintctl/browse/Measurement.h"
#include "spacemintctl/browse/RemovalOffer.h"
#include "spacemintctl/browse/Worker.h"

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace spacemint::ctl {

Popup box(std::string title, std::vector<Paragraph> text, std::string keys);

/// What a browser starts with.
struct BrowserSetup {
  /// The root of the scan, and the folder to show first, which is at or below it.
  std::string root;
  std::string folder;
  /// A stored or imported scan of `root`; without one, `root` is scanned.
  std::optional<Snapshot> scan = {};
  /// What the scan is, if it was imported: of another computer or another time. Nothing is measured then.
  std::string importedFrom = {};
  /// Why nothing may be removed, as a sentence; empty if it may.
  std::string whyReadOnly = {};
};

/// The state of `spacemintctl browse`: takes keys, says what the screen shows, and measures and removes in
/// threads of its own, whose results it takes from the inbox. One thread.
class Browser {
 public:
  Browser(BrowserSetup setup, Inbox& inbox, const Wording& wording);

  /// Begins to measure. Call it once, after the first screen is drawn.
  void start();
  void press(const Key& key, const ScreenSize& size);
  Screen screen(const ScreenSize& size);
  /// The folder in which the user wants a shell, once.
  std::optional<std::string> takeShellFolder() { return std::exchange(shellFolder_, std::nullopt); }
  /// True when the user wants to leave.
  bool hasEnded() const { return hasEnded_; }

 private:
  enum class Page : std::uint8_t { folder, found, cleanable };
  using Choose = std::function<void(std::size_t choice)>;
  using Enter = std::function<void(const std::string& text)>;

  bool mayMeasure() const { return setup_.importedFrom.empty(); }
  bool isScanning() const { return scanning_ != nullptr; }

  // Scanning.
  void startScan();
  void scanAdvanced(const DiskScanner::Progress& progress, std::optional<Node> folder);
  void scanEnded(std::optional<Snapshot> scan);
  void sayWhatIsUnread(const Unread& unread);
  void listFolder();
  void lookIntoFolder();
  void measureFolderAgain();
  void folderFailed(const std::string& path);

  // Comparing.
  void loadUsualBaseline();
  void chooseBaseline();
  void setBaseline(std::optional<Snapshot> baseline);

  // Moving.
  void show(const std::string& path, const std::string& chosen = "");
  void updateRows();
  void setRows(std::vector<Row> rows, const std::string& chosen);
  void open();
  void back();
  void leavePage();
  void move(std::ptrdiff_t by);
  void click(const Key& key, const ScreenSize& size);
  void orderBy(RowKey key);

  // Other pages and boxes.
  void addGrowth(Row& row) const;
  void search(const std::string& text);
  void showFound(const std::string& text, std::vector<Row> rows, std::size_t count);
  void showCleanable();
  void showInfo();
  void mark();
  void say(std::string message, bool isWarning = false);
  void ask(Popup popup, Choose choose);
  void askFor(Popup popup, Enter enter);
  void pressInPopup(const Key& key);
  void closePopup();
  void askWhetherToQuit();
  void exportTo(const std::string& file);

  // Removing.
  void refuse(std::vector<std::string> why);
  bool refusesRemoval();
  void askRemoval();
  void askCleanup(const CleanupRequest& request);
  void carryOut(CleanupPlan plan);
  void removed(const CleanupPlan& plan, const CleanupReport& report, const std::vector<Measured>& measured);
  void storeScan(std::vector<std::string> touched);

  std::string statusText() const;
  std::string aboutFolder(const std::string& path) const;

  BrowserSetup setup_;
  Inbox& inbox_;
  BrowseView view_;
  BrowseTree tree_;
  std::unique_ptr<TrashCan> trash_ = hostTrash();
  CleanupContext context_;

  Page page_ = Page::folder;
  std::string folder_;
  FolderLook look_;
  bool hidesDotNames_ = false;
  // The order and the cursor of the folder while another page is shown.
  std::string chosenInFolder_;
  // What the list of cleanable places can do, by path.
  std::map<std::string, CleanupRequest> cleanups_;
  std::map<std::string, Bytes> marked_;

  std::optional<Snapshot> baseline_;
  bool choseBaseline_ = false;

  bool hasStarted_ = false;
  bool hasScan_ = false;
  bool isStored_ = false;
  // The user ended the scan early.
  bool isPartial_ = false;
  std::string progress_;
  ScanTiming::Expected expected_;
  std::chrono::steady_clock::time_point scanStart_;
  // The shown folder as far as it is measured.
  std::optional<Node> soFar_;
  // What changed while the scan ran; it may have measured this before.
  std::vector<std::string> touchedMeanwhile_;

  // Counts what leads to another list, so that the results of a search that is no longer wanted are dropped.
  std::size_t lists_ = 0;

  std::string message_;
  Choose choose_;
  Enter enter_;
  std::shared_ptr<std::atomic<bool>> stopRemoval_;
  std::optional<std::string> shellFolder_;
  bool hasEnded_ = false;

  // Last, so that they end first.
  Worker worker_;
  std::unique_ptr<Measurement> listing_;
  std::unique_ptr<Measurement> scanning_;
};

}  // namespace spacemint::ctl
