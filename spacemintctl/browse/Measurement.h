#pragma once

#include "core/scan/DiskScanner.h"
#include "core/tree/Snapshot.h"
#include "spacemintctl/browse/Inbox.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>

namespace spacemint::ctl {

/// A scan in a thread of its own that can be looked at while it runs. The thread of the screen owns it and
/// gets all calls back through the inbox; after the destructor, none come. The destructor ends the scan and
/// waits for it.
class Measurement {
 public:
  /// Fills the arguments of a scan that this object watches and can stop; the work sets the others.
  using Watched = std::function<void(DiskScanner::Arguments&)>;
  /// Runs in the thread. Absent if the scan failed or was stopped.
  using Work = std::function<std::optional<Snapshot>(const Watched& watched)>;

  struct Events {
    /// About ten times a second: the counts, and the folder of `show` if it is known so far.
    std::function<void(const DiskScanner::Progress&, std::optional<Node> folder)> advanced = {};
    /// Once. With what `stopAndKeep` kept, if that was called; it has a `Snapshot::measuredPart` then.
    std::function<void(std::optional<Snapshot>)> ended = {};
  };

  Measurement(Inbox& inbox, Work work, Events events);
  ~Measurement();
  Measurement(const Measurement&) = delete;
  Measurement& operator=(const Measurement&) = delete;

  /// Which folder `advanced` shows from now on.
  void show(std::string path);
  /// Ends the scan at its next step; `ended` gets what is measured until then. If the scan ends by itself
  /// first, `ended` gets all of it.
  void stopAndKeep();

 private:
  struct Shared;

  std::shared_ptr<Shared> shared_;
  std::jthread thread_;
};

}  // namespace spacemint::ctl
