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
  /// Whether the item is of this computer and the deletion guard allows to remove it. A view does not offer
  /// what is refused. Asks the disk whether the item is a link.
  bool mayRemove(const std::string& path, bool outsideHomeAllowed) const {
    return model.shown().isOfHere() &&
           !model.cleanups().guard().check({.path = path, .outsideHomeAllowed = outsideHomeAllowed});
  }

  /// The home folder in the scan that is shown; empty for a scan of another computer, where it is unknown.
  std::string homeInScan() const { return model.shown().isOfHere() ? home : std::string{}; }

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
