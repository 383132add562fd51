#pragma once

#include "core/tree/Node.h"

#include <string>

namespace spacemint::gallery {

/// A file that changed so many days before `support::morning`.
Node agedFile(std::string name, double megabytes, int days);

/// The home folder of Ann, before and after two days in which it grew.
Node homeOfAnn(const std::string& name, bool isLater);

}  // namespace spacemint::gallery
