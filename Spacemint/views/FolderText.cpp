#include "Spacemint/views/FolderText.h"

#include "Spacemint/model/ScanLifecycle.h"
#include "core/base/ByteFormat.h"
#include "core/base/Unicode.h"

namespace spacemint {

namespace {

std::string minimum(const std::string& locale) {
  return ByteFormat::string(ScanLifecycle::minNodeSize, locale);
}

}  // namespace

std::string FolderText::title(std::string_view path, std::string_view root, std::string_view home) {
  if (path != root && path != Paths::dataVolume) return Paths::lastComponent(path);
  return canonicallyEqual(path, home) ? "Home folder" : "Entire disk";
}

std::string FolderText::smallItems(bool hasChildren, const std::string& locale) {
  return hasChildren ? "Other small items" : "Only small items, each under " + minimum(locale);
}

std::string FolderText::noLargeFiles(const std::string& locale) {
  return "No files over " + minimum(locale) + ".";
}

}  // namespace spacemint
