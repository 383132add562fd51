#pragma once

#include <optional>
#include <string>
#include <vector>

namespace spacemint {

/// The user's own folders, as absolute paths without a trailing "/". Read at each call. Any thread that does
/// not run beside a change of the environment.
namespace UserFolders {

/// The value of an environment variable; absent where it is not set. The folders of the user's desktop
/// (XDG_DOWNLOAD_DIR and the like) come from the settings file user-dirs.dirs where no variable names them.
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
/// The folders in which the desktop keeps the user's own files, in the language of that desktop: documents,
/// downloads, pictures. Only those that are set and are not the home folder.
std::vector<std::string> personal();
/// Where processes of one session find each other; empty where the session has no such folder.
std::string runtime();

}  // namespace UserFolders

/// The user's locale for numbers and dates as an ICU identifier, such as "de_DE".
std::string userLocale();

}  // namespace spacemint
