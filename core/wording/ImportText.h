#pragma once

#include "core/history/NcduFormat.h"

#include <string>
#include <string_view>

namespace spacemint {

/// Sentences about a scan of another computer or another time, shared by the application and spacemintctl, in
/// the user's language. `locale` is an ICU locale identifier. Names are as they are in the file. Any thread.
namespace ImportText {

/// The name of the computer that was scanned, or "another computer".
std::string computer(const NcduFormat::Imported& imported);

/// "Scan of db1, 3 weeks ago"; names `file` if the scan does not name its computer, and no age if it has no
/// date. An empty `file` stands for none.
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
