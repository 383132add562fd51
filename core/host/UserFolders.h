#pragma once

#include <optional>
#include <string>
#include <vector>

namespace spacemint {

/// The user's folders, as absolute paths without a trailing "/". Not cached. Any thread, as long as no other
/// thread changes the environment at the same time.
namespace UserFolders {

/// The value of an environment variable; absent if the variable is not set. For the desktop's folders
/// (XDG_DOWNLOAD_DIR and the like) that are not set, returns the value in the settings file user-dirs.dirs.
std::optional<std::string> environment(const std::string& name);

/// The home folder: HOME, otherwise the entry in the password database, otherwise "/".
std::string home();
/// The folder for programs' data: XDG_DATA_HOME, by default ~/.local/share.
std::string data();
/// The folder for programs' settings: XDG_CONFIG_HOME, by default ~/.config.
std::string config();
/// The folder for programs' state, which is neither data nor settings: XDG_STATE_HOME, by default
/// ~/.local/state.
std::string state();
/// The folder for caches: XDG_CACHE_HOME, by default ~/.cache.
std::string cache();
/// The desktop's folders for the user's own files, such as documents, downloads and pictures, named in the
/// desktop's language. Only folders that are set and are not the home folder.
std::vector<std::string> personal();
/// The folder for sockets of the user's session, XDG_RUNTIME_DIR; empty if the session has none.
std::string runtime();

}  // namespace UserFolders

/// The user's locale for numbers and dates as an ICU identifier, such as "de_DE". Where the sentences are in
/// a language other than English, the numbers are in that language too.
std::string userLocale();

}  // namespace spacemint
