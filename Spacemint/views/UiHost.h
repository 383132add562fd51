#pragma once

#include "Spacemint/desktop/Desktop.h"
#include "Spacemint/model/AppModel.h"

#include <functional>
#include <string>

namespace spacemint {

/// What the views stand on. All of it outlives them.
struct UiHost {
  AppModel& model;
  Desktop desktop;
  std::string home;
  std::string locale;
  /// Ends the application.
  std::function<void()> quit;
};

}  // namespace spacemint
