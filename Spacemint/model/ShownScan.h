#pragma once

#include "Spacemint/desktop/Clock.h"
#include "Spacemint/model/Findings.h"
#include "Spacemint/model/Messages.h"
#include "Spacemint/model/ScanHistory.h"
#include "core/history/NcduFormat.h"

#include <QObject>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace spacemint {

/// A scan that was read from a file: of another computer, or of another time.
struct OpenedScan {
  NcduFormat::Imported imported;
  /// The path of the file.
  std::string file;
  /// The analyses that need no more than the tree.
  Findings findings = {};
};

/// The scan whose folders and files are shown: the current one of this computer, or one that the user opened
/// from a file. Only this class knows which. The history never has an opened scan, so nothing updates it,
/// warns about it or stores it. Main thread only.
class ShownScan : public QObject {
  Q_OBJECT
 public:
  /// A larger file is refused, because the application keeps the tree in memory.
  static constexpr std::size_t largestFile = 1'000'000'000;
  /// When reading takes longer than this, a message says so.
  static constexpr std::chrono::milliseconds patience{500};

  struct Parts {
    const ScanHistory& history;
    const CurrentFindings& findings;
    Messages& messages;
  };

  /// `locale`: an ICU locale identifier, for the sizes in messages.
  ShownScan(const Parts& parts, Tasks& tasks, Clock& clock, std::string locale);

  /// Whether the scan is of this computer. What is in another one is only looked at: its paths mean nothing
  /// here.
  bool isOfHere() const { return opened_ == nullptr; }
  /// Null before the first scan of this computer.
  const SharedSnapshot& snapshot() const { return opened_ ? openedSnapshot_ : parts_.history.snapshot(); }
  /// Nothing is compared in an opened scan.
  const Findings& findings() const { return opened_ ? opened_->findings : parts_.findings.findings(); }
  bool hasFindings() const { return opened_ || parts_.findings.isReady(); }
  /// Null for the scan of this computer.
  const OpenedScan* opened() const { return opened_.get(); }

  /// Reads a file on another thread and shows its scan. Says why if that fails; the scan that is shown stays.
  void open(const std::string& file);
  /// Shows the scan of this computer.
  void close();

 Q_SIGNALS:
  void snapshotChanged();
  /// Comes after `snapshotChanged`.
  void findingsChanged();
  /// `isOfHere` or `opened` changed. Comes before the other two.
  void sourceChanged();

 private:
  void show(std::shared_ptr<const OpenedScan> scan);
  void fail(const std::string& file, const Error& error);

  Parts parts_;
  Tasks& tasks_;
  Clock& clock_;
  std::string locale_;
  std::shared_ptr<const OpenedScan> opened_;
  /// Shares the tree of `opened_`.
  SharedSnapshot openedSnapshot_;
  /// Counts the files that were opened, so that a late one does not replace a newer one.
  std::uint64_t openings_ = 0;
  bool isReading_ = false;
};

}  // namespace spacemint
