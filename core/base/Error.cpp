#include "core/base/Error.h"

#include <system_error>

namespace spacemint {

Error systemError(std::string_view what, int errorNumber) {
  std::string message{what};
  message += ": ";
  message += std::generic_category().message(errorNumber);
  return {.domain = std::string{Error::system}, .code = errorNumber, .message = std::move(message)};
}

}  // namespace spacemint
