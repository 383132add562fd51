#pragma once

#include <optional>
#include <string>

namespace spacemint {

/// The user's own folders, as absolute paths without a trailing "/". Read from the environment at each call.
namespace UserFolders {

/// The value of an environment variable; absent where it is not set.
std::optional<std::string> environment(const std::string& name);

/// The home folder: of the environment, else of the password database.
std::string home();
/// Where programs keep their data.
std::string data();
/// Where programs keep their settings.
std::string config();
/// Where programs keep state that is neither.
std::string state();
/// Where programs keep what they can make again.
std::string cache();
/// Where processes of one session find each other; empty where the session has no such folder.
std::string runtime();

}  // namespace UserFolders

/// The user's locale for numbers and dates as an ICU identifier, such as "de_DE".
std::string userLocale();

}  // namespace spacemint
