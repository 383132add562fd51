#include "Spacemint/views/FolderText.h"

#include "Spacemint/model/ScanLifecycle.h"
#include "core/base/ByteFormat.h"
#include "core/base/Translation.h"
#include "core/base/Unicode.h"

namespace spacemint {

namespace {

std::string minimum(const std::string& locale) {
  return ByteFormat::string(ScanLifecycle::minNodeSize, locale);
}

}  // namespace

std::string FolderText::title(std::string_view path, std::string_view root, std::string_view home) {
  if (path != root && path != Paths::dataVolume) return Paths::lastComponent(path);
  return canonicallyEqual(path, home) ? i18n("Home folder") : i18n("Entire disk");
}

std::string FolderText::above(const std::string& path) {
  const std::size_t slash = Paths::withoutTrailingSlash(path).rfind('/');
  return slash == 0 || slash == std::string::npos ? "/" : path.substr(0, slash);
}

std::string FolderText::smallItems(bool hasChildren, const std::string& locale) {
  return hasChildren ? i18n("Other small items")
                     : i18n("Only small items, each under {size}", {{"size", minimum(locale)}});
}

std::string FolderText::nothingFound(const std::string& locale) {
  return i18n("Nothing found. The scan has files and folders from {size} on.", {{"size", minimum(locale)}});
}

std::string FolderText::noLargeFiles(const std::string& locale) {
  return i18n("No files over {size}.", {{"size", minimum(locale)}});
}

}  // namespace spacemint
