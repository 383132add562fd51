// Replaces RunWithWindows.cpp in a build without the interface.

#include "Spacemint/Process.h"
#include "core/base/Translation.h"

#include <cstdlib>

namespace spacemint {

int runWithWindows(char* /*program*/, Launch /*launch*/) {
  complain(i18n("this program was built without windows; \"spacemint --background\" needs none"));
  return EXIT_FAILURE;
}

}  // namespace spacemint
