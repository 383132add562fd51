#pragma once

#include <string>
#include <string_view>

namespace spacemint {

/// Pure functions over paths in a scan tree.
namespace Paths {

/// Mount point of the writable data volume on a host that splits its disk; paths in a tree of such a scan
/// begin with it, while people see the short form.
inline constexpr std::string_view dataVolume = "/System/Volumes/Data";

/// base + "/" + name; a base that ends in "/" gets no second one. The one rule by which paths are built.
std::string join(std::string_view base, std::string_view name);

/// The path without the data volume in front; "/" for the data volume itself.
std::string logical(std::string_view path);

/// The logical path for display: "~" for `home`, "~/…" for paths below it.
std::string display(std::string_view path, std::string_view home);

/// The absolute path without single "." and without doubled or trailing "/".
std::string plain(std::string_view path);

/// The part after the last "/", trailing "/" ignored; "/" for the root.
std::string lastComponent(std::string_view path);

/// The path without trailing "/"; "/" stays.
std::string_view withoutTrailingSlash(std::string_view path);

}  // namespace Paths

}  // namespace spacemint
