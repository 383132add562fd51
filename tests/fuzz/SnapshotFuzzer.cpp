// Whatever the bytes are, they are read or refused; and what was read is written in a form that reads the same.

#include "core/history/SnapshotCodec.h"

#include <cstdlib>

namespace spacemint {
namespace {

// What the format does not keep of a tree: counts below 1, and fractions of seconds.
void dropUnwritten(Node& node) {
  if (node.fileCount < 0) node.fileCount = 0;
  if (node.modified) {
    const auto second = std::chrono::floor<std::chrono::seconds>(*node.modified);
    const auto rest = *node.modified - second;
    const std::chrono::microseconds half{500'000};
    const bool isUp = second.time_since_epoch().count() < 0 ? rest > half : rest >= half;
    node.modified = dateFromUnixSeconds(second.time_since_epoch().count() + (isUp ? 1 : 0));
  }
  for (Node& child : node.children) dropUnwritten(child);
}

void readAndWrite(std::string_view bytes) {
  auto snapshot = SnapshotCodec::decode(bytes);
  if (!snapshot) return;
  const auto text = SnapshotCodec::encode(*snapshot);
  dropUnwritten(snapshot->root);
  if (!text || SnapshotCodec::decode(*text) != *snapshot) std::abort();
}

}  // namespace
}  // namespace spacemint

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  spacemint::readAndWrite({reinterpret_cast<const char*>(data), size});
  return 0;
}
