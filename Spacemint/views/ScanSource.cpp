#include "Spacemint/views/ScanSource.h"

#include "Spacemint/views/ShownText.h"
#include "core/wording/ImportText.h"

namespace spacemint {

ScanSource::ScanSource(const UiHost& host) : host_(host) {
  connect(&host_.model.shown(), &ShownScan::sourceChanged, this, &ScanSource::changed);
}

QString ScanSource::title() const {
  const OpenedScan* scan = host_.model.shown().opened();
  if (scan == nullptr) return {};
  return ShownText::onOneLine(ShownText::sentence(
      ImportText::title(scan->imported, scan->file, host_.desktop.clock.now(), ShownText::wordsLocale)));
}

QString ScanSource::contents() const {
  const OpenedScan* scan = host_.model.shown().opened();
  if (scan == nullptr) return {};
  return ShownText::onOneLine(
      ShownText::sentence(ImportText::contents(scan->imported.snapshot, host_.locale)));
}

void ScanSource::open(const QUrl& url) const {
  if (url.isLocalFile()) host_.model.open(url.toLocalFile().toStdString());
}

}  // namespace spacemint
