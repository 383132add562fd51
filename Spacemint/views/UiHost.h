#pragma once

#include "AppServices/Updates.h"
#include "AppServices/Usage.h"
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
  /// Shows what the product is, its version and its keys.
  std::function<void()> about;
  // Each null where there is none.
  LoginItem* loginItem = nullptr;
  Usage* usage = nullptr;
  Updates* updates = nullptr;
};

}  // namespace spacemint
