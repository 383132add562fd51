// Whatever the bytes are, they are read or refused; and what was read is written in a form that reads the
// same.

#include "core/history/SnapshotCodec.h"

#include <cmath>
#include <cstdlib>

namespace spacemint {
namespace {

// What the format does not keep of a tree: counts below 1, and fractions of seconds.
void dropUnwritten(Node& node) {
  if (node.fileCount < 0) node.fileCount = 0;
  if (node.modified) {
    const auto seconds = static_cast<long double>(node.modified->time_since_epoch().count()) / 1e6L;
    node.modified = dateFromUnixSeconds(std::llround(seconds));
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
