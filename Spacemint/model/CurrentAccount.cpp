#include "Spacemint/model/CurrentAccount.h"

#include <utility>

namespace spacemint {

namespace {

std::optional<Account> accountBy(const Snapshot& scan, std::optional<VolumeFacts> facts) {
  if (!facts) return std::nullopt;
  auto scanned = scannedVolume(scan, facts->volume);
  if (!scanned) return std::nullopt;
  facts->saved = savedBytes(scan, facts->volume);
  return accountOf(std::move(*facts), std::move(*scanned));
}

}  // namespace

CurrentAccount::CurrentAccount(const ScanHistory& history, Tasks& tasks, const Clock& clock,
                               const AppContext& context)
    : history_(history),
      tasks_(tasks),
      clock_(clock),
      context_(context) {
  connect(&history_, &ScanHistory::snapshotChanged, this, &CurrentAccount::read);
}

void CurrentAccount::refreshIfOld() {
  if (!readAt_ || clock_.steadyNow() - *readAt_ > freshFor) read();
}

void CurrentAccount::read() {
  const SharedSnapshot scan = history_.snapshot();
  if (!scan || scan->measuredPart || !context_.volumeFacts) return;
  if (isReading_) {
    isOutdated_ = true;
    return;
  }
  isReading_ = true;
  Q_EMIT changed();
  tasks_.run(
      Tasks::Priority::background, this,
      [scan, facts = context_.volumeFacts] { return accountBy(*scan, facts()); },
      [this](std::optional<Account> account) { take(std::move(account)); }, "account");
}

void CurrentAccount::take(std::optional<Account> account) {
  isReading_ = false;
  readAt_ = clock_.steadyNow();
  if (std::exchange(isOutdated_, false)) return read();
  hasFailed_ = !account;
  account_ = std::move(account);
  Q_EMIT changed();
}

}  // namespace spacemint
