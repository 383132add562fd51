#include "Spacemint/views/Icons.h"

#include <QMimeDatabase>

#include <algorithm>
#include <array>

namespace spacemint {

namespace {

struct FolderKind {
  const char* extension;
  std::string_view symbol;
};
constexpr std::array<FolderKind, 4> folderKinds{{{"app", "app.dashed"},
                                                 {"photoslibrary", "photo.on.rectangle.angled"},
                                                 {"musiclibrary", "music.note.house"},
                                                 {"tvlibrary", "music.note.house"}}};

struct Family {
  const char* prefix;
  std::string_view symbol;
};
constexpr std::array<Family, 3> families{{{"video/", "film"}, {"image/", "photo"}, {"audio/", "waveform"}}};

// Disk images have no common prefix, and newer registries renamed some of them.
constexpr std::array<const char*, 11> diskImages{
    "application/x-cd-image",       "application/x-iso9660-image", "application/vnd.efi.iso",
    "application/x-raw-disk-image", "application/vnd.efi.img",     "application/x-apple-diskimage",
    "application/x-qemu-disk",      "application/x-vmdk-disk",     "application/x-vdi-disk",
    "application/x-vhd-disk",       "application/x-vhdx-disk"};

// The part after the last dot, in lower case. A name whose only dot is its first character has no extension.
QString extensionOf(const QString& name) {
  const auto point = name.lastIndexOf(QLatin1Char{'.'});
  return point > 0 ? name.mid(point + 1).toLower() : QString{};
}

std::string_view folderSymbol(const QString& name) {
  if (name == QLatin1String{".Trash"}) return "trash";
  const QString extension = extensionOf(name);
  const auto* kind = std::ranges::find_if(
      folderKinds, [&](const FolderKind& each) { return extension == QLatin1String{each.extension}; });
  return kind != folderKinds.end() ? kind->symbol : "folder";
}

std::string_view typeSymbol(const QMimeType& type) {
  const QString name = type.name();
  for (const Family& family : families) {
    if (name.startsWith(QLatin1String{family.prefix})) return family.symbol;
  }
  const auto isNamed = [&](const char* each) { return name == QLatin1String{each}; };
  if (std::ranges::any_of(diskImages, isNamed)) return "externaldrive";
  const QString generic = type.genericIconName();
  if (generic == QLatin1String{"package-x-generic"}) return "doc.zipper";
  if (generic == QLatin1String{"application-x-executable"}) return "app.dashed";
  return "doc";
}

std::string_view fileSymbol(const QString& name) {
  const QString lower = name.toLower();
  if (lower.contains(QLatin1String{".img"}) || lower == QLatin1String{"docker.raw"}) return "externaldrive";
  if (extensionOf(name).isEmpty()) return "doc";
  static const QMimeDatabase types;
  return typeSymbol(types.mimeTypeForFile(name, QMimeDatabase::MatchExtension));
}

}  // namespace

std::string_view Icons::symbol(std::string_view name, bool isDirectory) {
  const QString text = QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
  return isDirectory ? folderSymbol(text) : fileSymbol(text);
}

}  // namespace spacemint
