#pragma once

namespace spacemint::ctl {

/// Says how full the volume of the home folder is.
int runStatus(bool json);

}  // namespace spacemint::ctl
