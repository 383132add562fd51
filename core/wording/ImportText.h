#pragma once

#include "core/history/NcduFormat.h"

#include <string>
#include <string_view>

namespace spacemint {

/// Sentences about a scan of another computer or another time, shared by the application and spacemintctl, in
/// the user's language. `locale` is an ICU locale identifier. Names are as they are in the file. Any thread.
namespace ImportText {

/// "Scan of db1, 2026-03-01 14:05"; names `file` if the scan does not name its computer. `when` may be empty,
/// and an empty `file` stands for none.
std::string title(const NcduFormat::Imported& imported, std::string_view file, const std::string& when);
/// The same with the age, "Scan of db1, 3 weeks ago", if the scan has a date.
std::string title(const NcduFormat::Imported& imported, std::string_view file, Date now,
                  const std::string& locale);

/// "/srv: 412 GB in 1,203,443 files"
std::string contents(const Snapshot& scan, const std::string& locale);

/// Why the scan in `file` cannot be shown.
std::string failure(std::string_view file, const Error& error);

/// What can be done with such a scan.
std::string notice();

}  // namespace ImportText

}  // namespace spacemint
