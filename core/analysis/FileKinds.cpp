#include "core/analysis/FileKinds.h"

#include "core/base/AsciiText.h"
#include "core/host/AtomicFile.h"
#include "core/host/UserFolders.h"
#include "core/tree/TreeWalk.h"

#include <algorithm>
#include <optional>

namespace spacemint {

namespace {

using enum FileKind;

struct MimeRow {
  std::string_view prefix;
  FileKind kind;
};
// The first row decides whose prefix a type begins with.
constexpr MimeRow mimeRows[] = {
    {"video/", video},
    {"image/", pictures},
    {"audio/", music},
    {"application/x-cd-image", diskImages},
    {"application/vnd.efi.i", diskImages},  // img, iso
    {"application/x-raw-", diskImages},     // x-raw-disk-image, x-raw-floppy-disk-image
    {"application/raw-disk-image", diskImages},
    {"application/x-qemu-disk", diskImages},
    {"application/x-vmdk-disk", diskImages},
    {"application/x-vdi-disk", diskImages},
    {"application/x-vhd", diskImages},
    {"application/x-virtual-hard-disk", diskImages},
    {"application/x-virtualbox-", diskImages},
    {"application/x-apple-diskimage", diskImages},
    {"application/vnd.debian.binary-package", packages},
    {"application/x-deb", packages},
    {"application/x-rpm", packages},
    {"application/x-alpm-package", packages},
    {"application/vnd.appimage", packages},
    {"application/vnd.flatpak", packages},
    {"application/vnd.snap", packages},
    {"application/vnd.squashfs", packages},
    {"application/vnd.android.package-archive", packages},
    {"application/x-java-archive", packages},
    {"application/java-archive", packages},
    {"application/x-msi", packages},
    {"application/zip", archives},
    {"application/gzip", archives},
    {"application/zstd", archives},
    {"application/vnd.rar", archives},
    {"application/vnd.ms-cab-compressed", archives},
    {"application/x-7z-compressed", archives},
    {"application/x-tar", archives},
    {"application/x-compressed-tar", archives},
    {"application/x-bzip", archives},
    {"application/x-xz", archives},
    {"application/x-lz", archives},  // lz4, lzip, lzma, lzop
    {"application/x-zstd-compressed-tar", archives},
    {"application/x-cpio", archives},
    {"application/x-rar", archives},
    {"application/x-compress", archives},
    {"application/pdf", documents},
    {"application/epub", documents},
    {"application/rtf", documents},
    {"application/msword", documents},
    {"application/postscript", documents},
    {"application/vnd.ms-", documents},
    {"application/vnd.oasis.opendocument.", documents},
    {"application/vnd.openxmlformats-officedocument.", documents},
    {"application/x-mobipocket-ebook", documents},
    {"text/plain", documents},
    {"text/markdown", documents},
    {"text/csv", documents},
    {"text/", code},
    {"application/javascript", code},
    {"application/json", code},
    {"application/toml", code},
    {"application/typescript", code},
    {"application/xml", code},
    {"application/sql", code},
    {"application/x-perl", code},
    {"application/x-php", code},
    {"application/x-ruby", code},
    {"application/x-shellscript", code},
    {"application/x-yaml", code},
    {"application/yaml", code},
};

struct EndingRow {
  std::string_view ending;
  FileKind kind;
};
// What the database does not have or names otherwise; and the most common endings, for a system without it.
constexpr EndingRow endingRows[] = {
    {"gguf", models},       {"ggml", models},      {"safetensors", models}, {"onnx", models},
    {"pt", models},         {"pth", models},       {"ckpt", models},        {"tflite", models},
    {"iso", diskImages},    {"img", diskImages},   {"qcow2", diskImages},   {"vmdk", diskImages},
    {"vdi", diskImages},    {"vhdx", diskImages},  {"dmg", diskImages},     {"mp4", video},
    {"mkv", video},         {"mov", video},        {"avi", video},          {"webm", video},
    {"jpg", pictures},      {"jpeg", pictures},    {"png", pictures},       {"heic", pictures},
    {"tiff", pictures},     {"raw", pictures},     {"mp3", music},          {"flac", music},
    {"ogg", music},         {"m4a", music},        {"wav", music},          {"zip", archives},
    {"gz", archives},       {"tgz", archives},     {"xz", archives},        {"zst", archives},
    {"bz2", archives},      {"7z", archives},      {"rar", archives},       {"tar", archives},
    {"pdf", documents},     {"epub", documents},   {"docx", documents},     {"odt", documents},
    {"txt", documents},     {"csv", documents},    {"deb", packages},       {"rpm", packages},
    {"appimage", packages}, {"flatpak", packages}, {"snap", packages},      {"jar", packages},
    {"apk", packages},      {"whl", packages},     {"cpp", code},           {"h", code},
    {"py", code},           {"js", code},          {"json", code},          {"xml", code},
};

std::optional<FileKind> kindOfType(std::string_view type) {
  const auto* row =
      std::ranges::find_if(mimeRows, [&](const MimeRow& each) { return type.starts_with(each.prefix); });
  return row == std::end(mimeRows) ? std::nullopt : std::optional{row->kind};
}

// The ending of a pattern such as "*.tar.gz"; empty for any other pattern.
std::string_view endingOf(std::string_view pattern) {
  if (!pattern.starts_with("*.")) return {};
  pattern.remove_prefix(2);
  return pattern.find_first_of("*?[") == std::string_view::npos ? pattern : std::string_view{};
}

std::string globsOfThisSystem() {
  constexpr std::size_t limit = 10'000'000;
  const std::string folders =
      UserFolders::data() + ":" +
      UserFolders::environment("XDG_DATA_DIRS").value_or("/usr/local/share:/usr/share");
  std::string text;
  for (const std::string_view folder : pieces(folders, ':')) {
    text += readFile(std::string{folder} + "/mime/globs2", limit).value_or("");
    text += '\n';
  }
  return text;
}

}  // namespace

FileKinds::FileKinds(std::string_view globs) {
  for (const EndingRow& row : endingRows) byEnding_.try_emplace(std::string{row.ending}, row.kind);
  // weight:type:pattern[:flags], the heaviest first
  for (const std::string_view line : lines(globs)) {
    const auto parts = pieces(line, ':');
    if (line.starts_with('#') || parts.size() < 3) continue;
    const auto kind = kindOfType(parts[1]);
    const std::string_view ending = endingOf(parts[2]);
    if (kind && !ending.empty()) byEnding_.try_emplace(lowerCased(ending), *kind);
  }
}

const FileKinds& FileKinds::ofThisSystem() {
  static const FileKinds kinds{globsOfThisSystem()};
  return kinds;
}

FileKind FileKinds::of(std::string_view name) const {
  std::string ending = lowerCased(name);
  for (std::size_t dot = ending.find('.'); dot != std::string::npos; dot = ending.find('.')) {
    ending.erase(0, dot + 1);
    if (const auto found = byEnding_.find(ending); found != byEnding_.end()) return found->second;
  }
  return FileKind::other;
}

std::vector<KindTotal> kindTotals(const Node& root, const FileKinds& kinds) {
  std::array<KindTotal, fileKindRows.size()> totals{};
  walkTree(root, [&](const std::string& /*path*/, const Node& node) {
    if (node.isDirectory) return;
    const FileKind kind = kinds.of(node.name);
    KindTotal& total = totals.at(static_cast<std::size_t>(kind));
    total.kind = kind;
    total.size = saturatingAdd(total.size, node.size);
    ++total.files;
  });
  std::vector<KindTotal> found;
  std::ranges::copy_if(totals, std::back_inserter(found),
                       [](const KindTotal& each) { return each.files > 0; });
  std::ranges::stable_sort(found, std::greater{}, &KindTotal::size);
  return found;
}

}  // namespace spacemint
