#pragma once

#include "core/base/Error.h"

#include <expected>

namespace spacemint {

/// Whether the desktop starts the application when the user logs in. Main thread only.
class LoginItem {
 public:
  LoginItem() = default;
  LoginItem(const LoginItem&) = delete;
  LoginItem& operator=(const LoginItem&) = delete;
  virtual ~LoginItem() = default;

  virtual bool isEnabled() const = 0;
  /// Fails where the program is not installed, or the entry cannot be written.
  virtual std::expected<void, Error> enable() = 0;
  /// Succeeds where there is nothing to disable.
  virtual std::expected<void, Error> disable() = 0;
};

}  // namespace spacemint
