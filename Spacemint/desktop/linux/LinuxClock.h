#pragma once

#include "Spacemint/desktop/Clock.h"

namespace spacemint {

/// The system's clock, and timers of the event loop. What repeats comes at moments at which other timers of
/// the system come too, as far as its tolerance allows.
class LinuxClock final : public Clock {
 public:
  Date now() const override;
  void after(std::chrono::milliseconds delay, QObject* context, Callback callback) override;
  void every(const Repeating& timing, QObject* context, Callback callback) override;
};

}  // namespace spacemint
