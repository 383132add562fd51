// Whatever the update feed says: what is taken from it is newer, of this product, and lies in no other
// folder.

#include "AppServices/UpdateChoice.h"
#include "core/base/NumericOrder.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  using namespace spacemint;
  const auto items = parseUpdateFeed({reinterpret_cast<const char*>(data), size});
  if (!items) return 0;
  const auto update = newestUpdate(
      *items,
      {.version = "1.9", .package = "spacemint", .system = {.kernel = "6.1", .architecture = "amd64"}});
  if (!update || !*update) return 0;
  const std::string& name = (*update)->fileName;
  if (!name.starts_with("spacemint_") || !name.ends_with(".deb") || name.find('/') != std::string::npos ||
      (*update)->length < 1 || (*update)->length > largestUpdate ||
      numericOrder((*update)->version, "1.9") <= 0) {
    std::abort();
  }
  return 0;
}
