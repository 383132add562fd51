// A backup's description comes from another device: whatever it holds, it is read or refused.

#include "core/base/PropertyList.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  constexpr const char* keys[] = {"Device Name", "Product Name", "Last Backup Date", "Count", "Ratio",
                                  "Whole",       "Apps"};
  spacemint::parsePropertyList({reinterpret_cast<const char*>(data), size}, keys);
  return 0;
}
