#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>

#include <chrono>

namespace spacemint::support {

/// Runs the event loop until `condition` holds, looking after each round of events; whether it does in the
/// end. The limit is for tests that would otherwise never end.
template <class Condition>
bool waitUntil(Condition condition, std::chrono::milliseconds limit = std::chrono::minutes{4}) {
  const QDeadlineTimer deadline(limit);
  QTimer wakeUp;  // so that the loop turns at the limit too
  wakeUp.start(limit);
  while (!condition()) {
    if (deadline.hasExpired()) return false;
    QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
  }
  return true;
}

}  // namespace spacemint::support
