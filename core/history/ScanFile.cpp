#include "core/history/ScanFile.h"

#include "core/history/SnapshotCodec.h"
#include "core/host/AtomicFile.h"

#include <utility>

namespace spacemint {

std::expected<NcduFormat::Imported, Error> ScanFile::decode(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t\r\n\xEF\xBB\xBF");
  // An export is an array, a stored scan an object.
  if (first == std::string_view::npos || text[first] != '{') return NcduFormat::decode(text);
  auto stored = SnapshotCodec::decode(text);
  if (!stored) return std::unexpected(std::move(stored).error());
  return NcduFormat::Imported{.snapshot = std::move(*stored), .host = {}, .program = "spacemint"};
}

std::expected<NcduFormat::Imported, Error> ScanFile::read(const std::string& path, std::size_t limit) {
  const auto text = readFile(path, limit);
  return text ? decode(*text) : std::unexpected(text.error());
}

}  // namespace spacemint
