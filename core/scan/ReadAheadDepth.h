#pragma once

#include <chrono>
#include <cstddef>

namespace spacemint {

/// Finds out how many folders are best listed at the same time, from the time that listing them took.
///
/// Where the folders are cached, listing costs processor time only, so there is a helper for each processor.
/// Where the disk is asked, one helper begins, and the number doubles for as long as that makes the listing
/// faster by a seventh, up to what the disk takes at once. One thread at a time.
class ReadAheadDepth {
 public:
  struct Limits {
    /// How many helpers are enough where the folders are cached.
    unsigned processors = 1;
    /// How many requests the disk takes at the same time.
    unsigned most = 1;
  };

  /// The most folders that are ever listed at the same time.
  static constexpr unsigned highest = 32;

  explicit ReadAheadDepth(Limits limits);

  unsigned now() const { return depth_; }

  struct Listed {
    std::size_t names = 0;
    std::chrono::nanoseconds elapsed{0};
    /// Whether the thread waited for the disk meanwhile.
    bool hasWaited = false;
  };
  /// Takes in a folder that was listed while `now` helpers were at work.
  void note(const Listed& folder);

 private:
  struct Window {
    unsigned folders = 0;
    unsigned waited = 0;
    double work = 0;
    std::chrono::duration<double> elapsed{0};
  };

  unsigned next(double rate);
  bool isCached() const;

  Limits limits_;
  unsigned depth_ = 1;
  Window window_;
  /// The depth and rate before the last step up; no step is on trial without a rate.
  unsigned depthBefore_ = 0;
  double rateBefore_ = 0;
  /// How many windows pass before the next step up.
  unsigned rest_ = 0;
};

}  // namespace spacemint
