#include "Spacemint/model/Remeasure.h"

#include "core/host/Removal.h"
#include "core/scan/DiskScanner.h"

#include <cerrno>
#include <filesystem>

namespace spacemint {

namespace {

// What is at a path now.
struct Measured {
  bool exists = false;
  std::optional<DiskScanner::Result> result = {};
};

Measured measure(const std::string& path, Bytes minNodeSize) {
  const auto identity = fileIdentity(path);
  if (!identity && (identity.error().isSystem(ENOENT) || identity.error().isSystem(ENOTDIR))) return {};
  return {.exists = true, .result = DiskScanner::scan({.root = path, .minNodeSize = minNodeSize})};
}

bool apply(Measured measured, const Remeasure::Request& request, Snapshot& snapshot) {
  if (measured.result) {
    const Node* known = snapshot.nodeAt(request.path);
    if (known != nullptr && known->size == measured.result->root.size) return false;
    return snapshot.upsert(request.path, std::move(measured.result->root));
  }
  if (!measured.exists) return snapshot.remove(request.path);
  if (!request.assumeEmptied) return false;
  return snapshot.replace(request.path, Node{.name = request.path, .isDirectory = true});
}

// What has to be measured for a path to come into the scan: the highest folder on the way that is not in it,
// having been too small.
std::string highestMissing(const Snapshot& snapshot, std::string path) {
  for (;;) {
    std::string above = std::filesystem::path{path}.parent_path();
    if (above == path || !snapshot.components(above) || snapshot.nodeAt(above) != nullptr) return path;
    path = std::move(above);
  }
}

}  // namespace

QFuture<bool> Remeasure::run(Request request) {
  const SharedSnapshot& scan = history_.snapshot();
  const bool isKnown = scan && scan->nodeAt(request.path) != nullptr;
  if (!isKnown && !request.addIfMissing) return QtFuture::makeReadyFuture(true);
  if (scan && !isKnown) request.path = highestMissing(*scan, std::move(request.path));
  return tasks_
      .run(Tasks::Priority::userInitiated,
           [path = request.path, minNodeSize = minNodeSize_] { return measure(path, minNodeSize); })
      .then(whileAlive(this, [this, request](Measured measured) {
        history_.edit(request.path,
                      [&](Snapshot& snapshot) { return apply(std::move(measured), request, snapshot); });
        return true;
      }));
}

QFuture<bool> Remeasure::runAll(std::vector<Request> requests) {
  if (requests.empty()) return QtFuture::makeReadyFuture(true);
  Request first = std::move(requests.front());
  requests.erase(requests.begin());
  return run(std::move(first))
      .then(whileAlive(this, [this, rest = std::move(requests)](bool) { return runAll(rest); }))
      .unwrap();
}

}  // namespace spacemint
