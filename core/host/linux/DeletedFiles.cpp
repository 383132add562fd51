#include "core/host/DeletedFiles.h"

#include "core/base/AsciiText.h"
#include "core/host/FileHandle.h"
#include "core/host/linux/FolderEntries.h"
#include "core/host/linux/HandleFacts.h"
#include "core/host/linux/MountTable.h"
#include "core/host/linux/ProcText.h"

#include <fcntl.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <map>
#include <set>
#include <utility>

namespace spacemint {

namespace {

constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

std::string linkTarget(const FileHandle& folder, const char* name) {
  std::array<char, PATH_MAX> target;
  const ssize_t length = readlinkat(folder.get(), name, target.data(), target.size());
  return {target.data(), length > 0 ? static_cast<std::size_t>(length) : 0};
}

// Empty if the file cannot be read. Files of /proc have no size, so they are read to their end.
std::string contents(const FileHandle& folder, const char* name) {
  const FileHandle file{openat(folder.get(), name, O_RDONLY | O_CLOEXEC)};
  std::string text;
  std::array<char, 16'384> part;
  ssize_t length = 0;
  while ((length = read(file.get(), part.data(), part.size())) > 0) {
    text.append(part.data(), static_cast<std::size_t>(length));
  }
  return text;
}

template <class Take>
void forEachName(const FileHandle& folder, const Take& take) {
  alignas(8) std::array<std::byte, 16'384> buffer;
  const auto takeName = [&](const FolderEntry& entry) { take(entry.name.data()); };
  while (readFolderEntries(folder, buffer, takeName).value_or(false)) {
  }
}

// The device numbers of mounts, by the ids of the mounts. A mount of a container is only in the container's
// own table, so there is one table for each mount namespace.
class MountPools {
 public:
  // Absent for a file on no mounted file system. `process` is the open folder of a process of the namespace.
  std::optional<std::uint64_t> poolOf(const FileHandle& process, std::uint64_t mountId) {
    const auto [table, isNew] = tables_.try_emplace(linkTarget(process, "ns/mnt"));
    if (isNew) {
      for (const Mount& mount : parseMountTable(contents(process, "mountinfo"))) {
        table->second.emplace(mount.id, mount.device);
      }
    }
    const auto found = table->second.find(mountId);
    return found != table->second.end() ? std::optional{found->second} : std::nullopt;
  }

 private:
  std::map<std::string, std::map<std::uint64_t, std::uint64_t>> tables_;
};

// Collects the deleted files of one process after the other.
class Survey {
 public:
  void look(const FileHandle& proc, const char* name) {
    const FileHandle process{openat(proc.get(), name, folderFlags)};
    if (!process) return;
    const FileHandle descriptors{openat(process.get(), "fd", folderFlags)};
    if (!descriptors && errno != EACCES && errno != EPERM) return;
    ++found_.programs;
    if (!descriptors) {
      ++found_.refused;
      return;
    }
    const RunningProgram program{std::atoi(name), std::string{trimmed(contents(process, "comm"))}};
    lookAtDescriptors(process, descriptors, program);
    lookAtMappings(process, program);
  }

  DeletedFiles result() && {
    for (auto& [key, file] : files_) found_.files.push_back(std::move(file));
    for (auto& [key, file] : unsized_) {
      if (!sized_.contains(key)) found_.files.push_back(std::move(file));
    }
    return std::move(found_);
  }

 private:
  // The device number of a file and its inode number. On Btrfs the device is that of the subvolume.
  using Key = std::pair<std::uint64_t, std::uint64_t>;

  void lookAtDescriptors(const FileHandle& process, const FileHandle& descriptors,
                         const RunningProgram& program) {
    forEachName(descriptors, [&](const char* descriptor) {
      auto path = deletedPath(linkTarget(descriptors, descriptor));
      if (path) take(process, descriptors, descriptor, std::move(*path), program);
    });
  }

  void lookAtMappings(const FileHandle& process, const RunningProgram& program) {
    const auto mappings = parseDeletedMappings(contents(process, "maps"));
    if (mappings.empty()) return;
    const FileHandle ranges{openat(process.get(), "map_files", folderFlags)};
    for (const DeletedMapping& mapping : mappings) {
      if (ranges && take(process, ranges, mapping.range.c_str(), mapping.path, program)) continue;
      add(unsized_, {mapping.device, mapping.inode}, program, {.pool = mapping.device, .path = mapping.path});
    }
  }

  // Takes the file that a link below /proc leads to if it is deleted. False if the file may not be asked.
  bool take(const FileHandle& process, const FileHandle& links, const char* link, std::string path,
            const RunningProgram& program) {
    const auto facts = factsBehind(links, link);
    if (!facts) return facts.error() == ENOENT;
    if (!S_ISREG(facts->mode) || facts->links != 0) return true;
    const auto pool = mounts_.poolOf(process, facts->mounted.mountId);
    if (!pool) return true;
    add(files_, {facts->mounted.device, facts->inode}, program,
        {.size = facts->allocated, .pool = *pool, .path = std::move(path)});
    sized_.insert({*pool, facts->inode});
    return true;
  }

  static void add(std::map<Key, DeletedFile>& files, Key key, const RunningProgram& program,
                  DeletedFile file) {
    auto& programs = files.try_emplace(key, std::move(file)).first->second.programs;
    if (programs.empty() || programs.back() != program) programs.push_back(program);
  }

  DeletedFiles found_;
  MountPools mounts_;
  std::map<Key, DeletedFile> files_;
  // Mapped files whose size is not known, by the device of their mounts and their inode number.
  std::map<Key, DeletedFile> unsized_;
  // The files of `files_` by the same numbers.
  std::set<Key> sized_;
};

}  // namespace

DeletedFiles deletedFilesInUse() {
  const FileHandle proc{open("/proc", folderFlags)};
  std::vector<std::string> processes;
  forEachName(proc, [&](const char* name) {
    if (isDigit(*name)) processes.emplace_back(name);
  });
  Survey survey;
  for (const std::string& process : processes) survey.look(proc, process.c_str());
  return std::move(survey).result();
}

}  // namespace spacemint
