#pragma once

namespace spacemint {

/// How a thread makes way for other programs.
struct Deference {
  /// The disk serves other programs first (the idle class).
  bool idleIo = false;
  /// The processor time that is left beside other threads: from 0, an equal share, to 19, nearly nothing.
  int niceness = 0;
};

/// The niceness of work that nobody waits for. Beside a busy program such a thread has 0.39 of a processor:
/// the smallest share with which the work ends within three times its usual time.
inline constexpr int backgroundNiceness = 2;

/// Gives the calling thread, and the threads that it starts from now on, a lower priority for the rest of
/// their lives. Never raises a priority. Has no effect where the system refuses.
void lowerPriority(const Deference& deference);

/// Lowers the priority of the calling thread, and of the threads that it starts, while the object exists.
/// Destroy the object on the same thread. Ordinary users may not get their share of the processor back.
class LoweredPriority {
 public:
  explicit LoweredPriority(const Deference& deference);
  ~LoweredPriority();
  LoweredPriority(const LoweredPriority&) = delete;
  LoweredPriority& operator=(const LoweredPriority&) = delete;

 private:
  int savedIo_;
  int savedNiceness_;
};

/// How often the calling thread waited for a disk or a lock so far.
long waitsOfThread();

}  // namespace spacemint
