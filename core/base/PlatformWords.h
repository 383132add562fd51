#pragma once

#include "core/base/Translation.h"

namespace spacemint {

/// The words for parts of the Linux desktop. Texts that name such a part take its words from this table, so
/// that they never name a part of another platform. Whoever shows one calls i18n with it.
namespace PlatformWords {

/// For the button that selects an item in the file manager, where the name of the file manager is unknown.
inline constexpr const char* showInFileManager = i18nMark("Show in File Manager");
inline constexpr const char* hiddenInTrash =
    i18nMark("Most of it is hidden ({size}), so the file manager shows the Trash as empty.");
inline constexpr const char* statusArea = i18nMark("Status area");
inline constexpr const char* window = i18nMark("Window");
inline constexpr const char* whileIdle = i18nMark("while your computer has nothing else to do");
inline constexpr const char* systemVersion = i18nMark("the version of your system");
inline constexpr const char* madeByBackupTool = i18nMark("Made by your backup tool");
inline constexpr const char* startDocker = i18nMark("Start Docker to see what can be cleaned up.");

/// Whether the system lets the application see all files. It does not in a sandbox.
inline constexpr const char* accessIsComplete = i18nMark("File access is complete");
inline constexpr const char* accessIsLimited = i18nMark("File access is limited");
inline constexpr const char* foldersAreClosed = i18nMark("Some folders are closed to Spacemint");

}  // namespace PlatformWords

}  // namespace spacemint
