#pragma once

#include "Spacemint/desktop/Clock.h"
#include "Spacemint/desktop/Tasks.h"
#include "Spacemint/model/AppContext.h"
#include "Spacemint/model/ScanHistory.h"
#include "core/volume/Account.h"

#include <QObject>

#include <chrono>
#include <optional>

namespace spacemint {

/// Where the space of the home folder's volume is, by the current scan. Main thread only.
///
/// The programs and the volume are read on a thread of its own, so that neither a scan nor the panel waits.
class CurrentAccount : public QObject {
  Q_OBJECT
 public:
  /// When the panel opens, an older account is read again.
  static constexpr std::chrono::minutes freshFor{1};

  CurrentAccount(const ScanHistory& history, Tasks& tasks, const Clock& clock, const AppContext& context);

  /// Absent without a scan that reached its end, until the first reading is done, and if that failed.
  const std::optional<Account>& account() const { return account_; }
  bool isReading() const { return isReading_; }
  /// The last reading failed, or the scan has nothing of the volume.
  bool hasFailed() const { return hasFailed_; }

  /// Reads again if the last reading is older than `freshFor`.
  void refreshIfOld();

 Q_SIGNALS:
  void changed();

 private:
  void read();
  void take(std::optional<Account> account);

  const ScanHistory& history_;
  Tasks& tasks_;
  const Clock& clock_;
  const AppContext& context_;
  std::optional<Account> account_;
  std::optional<std::chrono::steady_clock::time_point> readAt_;
  bool isReading_ = false;
  /// The scan changed during the reading.
  bool isOutdated_ = false;
  bool hasFailed_ = false;
};

}  // namespace spacemint
