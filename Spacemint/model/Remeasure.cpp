#include "Spacemint/model/Remeasure.h"

#include "core/host/Removal.h"
#include "core/scan/DiskScanner.h"

#include <cerrno>

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

}  // namespace

QFuture<bool> Remeasure::run(Request request) {
  const bool isKnown = history_.snapshot() && history_.snapshot()->nodeAt(request.path) != nullptr;
  if (!isKnown && !request.addIfMissing) return QtFuture::makeReadyFuture(true);
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
