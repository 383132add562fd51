#include "core/host/FreedMemory.h"

#include <malloc.h>

namespace spacemint {

void giveBackFreedMemory() {
  malloc_trim(0);
}

}  // namespace spacemint
