#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace spacemint {

/// A part of a program's memory that shows a deleted file.
struct DeletedMapping {
  /// The name of the mapping's link in /proc/PID/map_files.
  std::string range;
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  std::string path;

  bool operator==(const DeletedMapping&) const = default;
};

/// The path of a deleted file, as the kernel shows it in a link below /proc: an absolute path and
/// " (deleted)". Absent for all other links. A file that exists may have such a name, too. Pure.
std::optional<std::string> deletedPath(std::string_view link);

/// The deleted files in the text of /proc/PID/maps, each once. Lines with an unknown format are left out.
/// Pure.
std::vector<DeletedMapping> parseDeletedMappings(std::string_view text);

/// Parses a device number such as "8:1", in which both numbers have the given base. Absent for other texts.
std::optional<std::uint64_t> parseDeviceNumber(std::string_view text, int base = 10);

/// Decodes the kernel's escapes: in names, some characters are written as a backslash and three octal digits.
std::string withoutKernelEscapes(std::string_view text);

}  // namespace spacemint
