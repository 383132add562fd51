#pragma once

#include "core/base/Bytes.h"

namespace spacemint {

/// The mark on the application's icon in the desktop's dock or task bar. Main thread only; nothing is said
/// where the desktop shows none.
class Badge {
 public:
  Badge() = default;
  Badge(const Badge&) = delete;
  Badge& operator=(const Badge&) = delete;
  virtual ~Badge() = default;

  virtual void show(Bytes free) = 0;
  virtual void clear() = 0;
};

}  // namespace spacemint
