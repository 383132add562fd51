#include "core/wording/ImportText.h"

#include "core/base/ByteFormat.h"
#include "core/base/Isolate.h"
#include "core/base/RelativeTime.h"
#include "core/base/Translation.h"
#include "core/tree/Paths.h"

namespace spacemint {

std::string ImportText::title(const NcduFormat::Imported& imported, std::string_view file,
                              const std::string& when) {
  if (imported.host.empty() && !file.empty()) {
    const std::string name = isolatedName(Paths::lastComponent(file));
    return when.empty() ? i18n("Scan in {file}", {{"file", name}})
                        : i18n("Scan in {file}, {age}", {{"file", name}, {"age", when}});
  }
  const std::string host = imported.host.empty() ? i18n("another computer") : isolatedName(imported.host);
  return when.empty() ? i18n("Scan of {host}", {{"host", host}})
                      : i18n("Scan of {host}, {age}", {{"host", host}, {"age", when}});
}

std::string ImportText::title(const NcduFormat::Imported& imported, std::string_view file, Date now,
                              const std::string& locale) {
  const Date date = imported.snapshot.date;
  return title(imported, file, date > Date{} ? RelativeTime::string(date, now, locale) : "");
}

std::string ImportText::contents(const Snapshot& scan, const std::string& locale) {
  return i18np("{path}: {size} in {count} file", "{path}: {size} in {count} files", scan.fileCount,
               {{"path", isolatedPath(scan.rootPath())},
                {"size", ByteFormat::string(scan.root.size, locale)},
                {"count", groupedNumber(scan.fileCount, locale)}});
}

// The message of a failed system call begins with the path.
std::string ImportText::failure(std::string_view file, const Error& error) {
  if (error.domain == Error::system) return error.message;
  return i18n("{file}: {problem}", {{"file", isolatedPath(file)}, {"problem", error.message}});
}

std::string ImportText::notice() {
  return i18n("It is only shown: nothing in it can be removed from here.");
}

}  // namespace spacemint
