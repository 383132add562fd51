#include "core/scan/StoppableScan.h"

namespace spacemint {

void StoppableScan::watch(DiskScanner::Arguments& arguments) {
  arguments.look = [this, look = std::move(arguments.look)](const DiskScanner::Unfinished& scan) {
    if (part_) return;
    if (shouldStop_()) {
      part_ = scan.soFar();
    } else if (look) {
      look(scan);
    }
  };
  arguments.shouldCancel = [this, shouldCancel = std::move(arguments.shouldCancel)] {
    return part_ || (shouldCancel && shouldCancel());
  };
}

}  // namespace spacemint
