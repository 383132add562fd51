#pragma once

#include <string>
#include <string_view>

namespace spacemint {

/// Pure functions on paths in a scan tree. Any thread.
namespace Paths {

/// The mount point of the writable data volume on hosts that split the disk into two volumes. Paths in a scan
/// of such a disk begin with the mount point; users see the paths without it.
inline constexpr std::string_view dataVolume = "/System/Volumes/Data";

/// base + "/" + name, without a second "/" if `base` already ends in "/". All code builds paths with this
/// function.
std::string join(std::string_view base, std::string_view name);

/// The path without a leading `dataVolume`; "/" for the data volume itself.
std::string logical(std::string_view path);

/// The logical path for display: "~" for `home`, "~/…" for paths below `home`.
std::string display(std::string_view path, std::string_view home);

/// The absolute path without "." components and without doubled or trailing "/".
std::string plain(std::string_view path);

/// The last component of the path. Ignores trailing "/"; "/" for the root.
std::string lastComponent(std::string_view path);

/// The folder that holds the item at an absolute path. Ignores trailing "/"; "/" is its own parent.
std::string parent(std::string_view path);

/// A file name of fixed length for a path: its 64-bit FNV-1a hash in hexadecimal digits.
std::string hash(std::string_view path);

/// The path without trailing "/"; "/" itself stays.
std::string_view withoutTrailingSlash(std::string_view path);

}  // namespace Paths

}  // namespace spacemint
