#include "spacemintctl/TransferCommands.h"

#include "core/base/Translation.h"
#include "core/history/ScanFile.h"
#include "core/history/SnapshotCodec.h"
#include "core/host/AtomicFile.h"
#include "core/host/UserFolders.h"
#include "core/wording/ImportText.h"
#include "spacemintctl/Answer.h"
#include "spacemintctl/Console.h"
#include "spacemintctl/ProgressLine.h"
#include "spacemintctl/StoredScan.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <iostream>

namespace spacemint::ctl {

namespace {

std::string hostName() {
  std::string name(256, '\0');
  if (gethostname(name.data(), name.size()) != 0) return "";
  name.resize(name.find('\0') == std::string::npos ? 0 : name.find('\0'));
  return name;
}

std::expected<std::string, Error> standardInput() {
  std::string text;
  std::array<char, 65'536> part{};
  while (std::cin.read(part.data(), part.size()) || std::cin.gcount() > 0) {
    text.append(part.data(), static_cast<std::size_t>(std::cin.gcount()));
    if (text.size() > ScanFile::largest) return std::unexpected(systemError(i18n("standard input"), EFBIG));
  }
  return text;
}

std::string heading(const NcduFormat::Imported& imported, const std::string& file,
                    const std::string& locale) {
  const Snapshot& scan = imported.snapshot;
  const std::string when = scan.date > Date{} ? localTime(scan.date) : "";
  return printable(ImportText::title(imported, file == "-" ? "" : file, when)) + '\n' +
         printable(ImportText::contents(scan, locale)) + '\n' + ImportText::notice() + '\n';
}

}  // namespace

std::string exported(const Snapshot& snapshot) {
  return NcduFormat::encode(snapshot, hostName(), SPACEMINT_VERSION);
}

std::expected<NcduFormat::Imported, Error> importedFrom(const std::string& file) {
  if (file != "-") {
    // Hundreds of megabytes take seconds.
    ProgressLine line{ProgressLine::canBeSeen(), {}, userLocale()};
    line.show([&] { return i18n("Reading {file}…", {{"file", printable(file)}}); });
    return ScanFile::read(file);
  }
  const auto text = standardInput();
  return text ? ScanFile::decode(*text) : std::unexpected(text.error());
}

bool exportScan(const Snapshot& snapshot, const std::string& file) {
  const std::string text = exported(snapshot);
  if (file.empty() || file == "-") return print(text);
  const auto written = writeFileAtomically(file, text);
  if (!written)
    complain(i18n("couldn't write the export: {reason}", {{"reason", printable(written.error().message)}}));
  return written.has_value();
}

int runExport(const ExportOptions& options) {
  const auto scan = storedScanOrComplaint(options.scan);
  return scan && exportScan(*scan, options.file) ? done : failed;
}

int runImport(const ImportOptions& options) {
  const auto imported = importedFrom(options.file);
  if (!imported) {
    complain(printable(ImportText::failure(options.file, imported.error())));
    return failed;
  }
  if (options.json) {
    const auto document = SnapshotCodec::encode(imported->snapshot);
    if (document) return print(*document + '\n') ? done : failed;
    complain(document.error().message);
    return failed;
  }
  // Paths of another computer: its home folder is unknown.
  const Wording wording{.home = "", .locale = userLocale()};
  return print(heading(*imported, options.file, wording.locale) +
               largestItems(imported->snapshot, options.top, wording))
             ? done
             : failed;
}

}  // namespace spacemint::ctl
