#include "Spacemint/model/ShownScan.h"

#include "core/base/ByteFormat.h"
#include "core/base/Isolate.h"
#include "core/base/Translation.h"
#include "core/history/ScanFile.h"
#include "core/tree/Paths.h"
#include "core/wording/ImportText.h"

#include <cerrno>
#include <expected>
#include <utility>

namespace spacemint {

namespace {

using Reading = std::expected<std::shared_ptr<const OpenedScan>, Error>;

Reading readOpened(const std::string& file) {
  auto imported = ScanFile::read(file, ShownScan::largestFile);
  if (!imported) return std::unexpected(std::move(imported).error());
  OpenedScan scan{.imported = std::move(*imported), .file = file};
  const Snapshot& snapshot = scan.imported.snapshot;
  scan.findings.largestFiles = snapshot.largestFiles(Findings::fileLimit);
  scan.findings.kinds = kindTotals(snapshot.root, FileKinds::ofThisSystem());
  return std::make_shared<const OpenedScan>(std::move(scan));
}

std::string shownName(const std::string& file) {
  return isolatedName(Paths::lastComponent(file));
}

}  // namespace

ShownScan::ShownScan(const Parts& parts, Tasks& tasks, Clock& clock, std::string locale)
    : parts_(parts),
      tasks_(tasks),
      clock_(clock),
      locale_(std::move(locale)) {
  connect(&parts_.history, &ScanHistory::snapshotChanged, this, [this] {
    if (isOfHere()) Q_EMIT snapshotChanged();
  });
  connect(&parts_.findings, &CurrentFindings::updated, this, [this] {
    if (isOfHere()) Q_EMIT findingsChanged();
  });
}

void ShownScan::open(const std::string& file) {
  const auto number = ++openings_;
  isReading_ = true;
  clock_.after(patience, this, [this, number, file] {
    if (isReading_ && number == openings_)
      parts_.messages.show(i18n("Reading {file}…", {{"file", shownName(file)}}));
  });
  tasks_.run(
      Tasks::Priority::alone, this, [file] { return readOpened(file); },
      [this, number, file](Reading reading) {
        if (number != openings_) return;
        isReading_ = false;
        if (!reading) return fail(file, reading.error());
        parts_.messages.clear();
        show(std::move(*reading));
      },
      "Spacemint open");
}

void ShownScan::close() {
  ++openings_;
  isReading_ = false;
  if (opened_) show(nullptr);
}

void ShownScan::show(std::shared_ptr<const OpenedScan> scan) {
  opened_ = std::move(scan);
  openedSnapshot_ = opened_ ? SharedSnapshot{opened_, &opened_->imported.snapshot} : nullptr;
  Q_EMIT sourceChanged();
  Q_EMIT snapshotChanged();
  Q_EMIT findingsChanged();
}

void ShownScan::fail(const std::string& file, const Error& error) {
  const std::string name = shownName(file);
  if (error.isSystem(EFBIG)) {
    const std::string size = ByteFormat::string(static_cast<Bytes>(largestFile), locale_);
    return parts_.messages.show(
        i18n("{file} is larger than {size}, which is too much to show.", {{"file", name}, {"size", size}}));
  }
  parts_.messages.show(ImportText::failure(name, error));
}

}  // namespace spacemint
