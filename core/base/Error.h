#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace spacemint {

/// Why an operation failed. Code decides on `domain` and `code`; `message` is for the user and the log.
struct Error {
  /// The domain of failed system calls; `code` is the errno.
  static constexpr std::string_view system = "system";

  std::string domain;
  int code = 0;
  std::string message;
  std::shared_ptr<const Error> underlying;

  bool isSystem(int errorNumber) const { return domain == system && code == errorNumber; }
};

/// The error of a failed system call. Its message is "WHAT: reason", where WHAT is normally the path that the
/// call was given.
Error systemError(std::string_view what, int errorNumber);

}  // namespace spacemint
