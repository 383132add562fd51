#pragma once

#include <string_view>

namespace spacemint {

/// The words for parts of the Linux desktop. Texts that name such a part take its words from this table, so
/// that they never name a part of another platform.
namespace PlatformWords {

/// For the button that selects an item in the file manager, where the name of the file manager is unknown.
inline constexpr std::string_view showInFileManager = "Show in File Manager";
inline constexpr std::string_view fileManager = "the file manager";
inline constexpr std::string_view statusArea = "Status area";
inline constexpr std::string_view window = "Window";
inline constexpr std::string_view whileIdle = "while your computer has nothing else to do";
inline constexpr std::string_view systemVersion = "the version of your system";
inline constexpr std::string_view madeByBackupTool = "Made by your backup tool";
inline constexpr std::string_view startDocker = "Start Docker to see what can be cleaned up.";

/// Whether the system lets the application see all files. It does not in a sandbox.
inline constexpr std::string_view accessIsComplete = "File access is complete";
inline constexpr std::string_view accessIsLimited = "File access is limited";
inline constexpr std::string_view foldersAreClosed = "Some folders are closed to Spacemint";

}  // namespace PlatformWords

}  // namespace spacemint
