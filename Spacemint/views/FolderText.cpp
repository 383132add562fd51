#include "Spacemint/views/FolderText.h"

#include "core/base/ByteFormat.h"
#include "core/base/Isolate.h"
#include "core/base/Translation.h"
#include "core/base/Unicode.h"

namespace spacemint {

std::string FolderText::title(std::string_view path, std::string_view root, std::string_view home) {
  if (path != root && path != Paths::dataVolume) return Paths::lastComponent(path);
  if (home.empty() && path != "/") return std::string{path};
  return canonicallyEqual(path, home) ? i18n("Home folder") : i18n("Entire disk");
}

std::string FolderText::place(const std::string& path, const UiHost& host) {
  return host.model.isInTrash(path) ? i18n("In the Trash")
                                    : isolatedPath(Paths::display(Paths::parent(path), host.homeInScan()));
}

// Without a minimum, these are the blocks of the folder itself.
std::string FolderText::smallItems(bool hasChildren, Bytes minimum, const std::string& locale) {
  return hasChildren || minimum <= 1
             ? i18n("Other small items")
             : i18n("Only small items, each under {size}", {{"size", ByteFormat::string(minimum, locale)}});
}

}  // namespace spacemint
