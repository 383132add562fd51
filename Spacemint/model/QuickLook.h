#pragma once

#include "Spacemint/desktop/Desktop.h"
#include "Spacemint/model/AppContext.h"
#include "Spacemint/model/Findings.h"
#include "Spacemint/model/Preferences.h"
#include "Spacemint/model/ScanLifecycle.h"
#include "Spacemint/model/VolumeWatch.h"

#include <QObject>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace spacemint {

/// Brings the current scan up to date between two scans, where a recorder knows the sizes of what changed.
/// The updated scan is shown, but it is not a scan of the history. Main thread only.
///
/// Nothing happens while a scan runs, without a recorder, or if the update takes longer than `longest`.
class QuickLook : public QObject {
  Q_OBJECT
 public:
  /// A look is due when the free space fell by this many bytes since the last one.
  static constexpr Bytes noticedLoss = 500'000'000;
  static constexpr std::chrono::milliseconds longest{200};
  /// The recorder lists at most so many folders: about as many as it can list in `longest`.
  static constexpr std::size_t folderLimit = 2'000;

  struct Parts {
    ScanHistory& history;
    const CurrentFindings& findings;
    const VolumeWatch& volume;
    const ScanLifecycle& scans;
    const Preferences& preferences;
  };

  QuickLook(const Parts& parts, const AppContext& context, const Desktop& desktop);

  /// Looks, unless a look is running, and calls `then` when the findings are those of the updated scan; at
  /// once if there is nothing to look at. What was not found changes nothing.
  void look(std::function<void()> then = [] {});
  /// Whether the last reading of the volume makes a look due. Call it once after every reading.
  bool isDue();

 private:
  bool canLook() const;
  void take(std::optional<Snapshot> updated, std::int64_t revision);
  void finish();

  Parts parts_;
  const AppContext& context_;
  Desktop desktop_;
  /// The most free space since the last look.
  std::optional<Bytes> mostFree_;
  /// Called when the running look is over; without one, there are none.
  std::vector<std::function<void()>> waiting_;
};

}  // namespace spacemint
