#pragma once

#include "AppServices/Updates.h"
#include "AppServices/Usage.h"
#include "Spacemint/desktop/Desktop.h"
#include "Spacemint/model/AppModel.h"

#include <functional>
#include <string>

namespace spacemint {

/// The objects that all views use. Each of them outlives the views. Main thread only.
struct UiHost {
  /// Whether the deletion guard allows to remove the item. A view does not offer what the guard refuses. Asks
  /// the disk whether the item is a link.
  bool mayRemove(const std::string& path, bool outsideHomeAllowed) const {
    return !model.cleanups().guard().check({.path = path, .outsideHomeAllowed = outsideHomeAllowed});
  }

  AppModel& model;
  Desktop desktop;
  std::string home;
  /// An ICU locale identifier; it formats the numbers.
  std::string locale;
  /// Ends the application.
  std::function<void()> quit;
  /// Shows what the product is, its version and its keys.
  std::function<void()> about;
  // Null in a product that has no such service.
  LoginItem* loginItem = nullptr;
  Usage* usage = nullptr;
  Updates* updates = nullptr;
};

}  // namespace spacemint
