#pragma once

#include <dirent.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

namespace spacemint::support {

/// Changes a folder as programs change a disk, with one random operation after the other. The same seed gives
/// the same operations.
///
/// There are few names, so that operations interfere with each other. All names of a file are in one folder,
/// because events name only the path that was used.
class RandomDisk {
 public:
  /// Entries also move between `root` and `outside`, which must be on the same volume.
  RandomDisk(std::string root, std::string outside, std::uint64_t seed)
      : root_(std::move(root)),
        outside_(std::move(outside)),
        random_(seed) {
    for (int i = 0; i < 12; ++i) makeTree(subfolder(), 3);
  }
  ~RandomDisk() {
    for (const int kept : kept_) close(kept);
    // So that the owner of the root can remove it.
    removeTree(root_);
    removeTree(outside_);
  }
  RandomDisk(const RandomDisk&) = delete;
  RandomDisk& operator=(const RandomDisk&) = delete;

  /// Also removes and restores permissions of folders. For a user whom permissions bind.
  void changePermissions() { changesPermissions_ = true; }

  void steps(int count) {
    for (int i = 0; i < count; ++i) step();
  }

 private:
  static bool isFolder(const std::string& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
  }

  static bool hasOneName(const std::string& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0 && !S_ISDIR(status.st_mode) && status.st_nlink == 1;
  }

  std::uint64_t below(std::uint64_t limit) { return random_() % limit; }
  std::string subfolder() { return folder() + "/" + folderName(); }
  std::string outsideFolder() { return outside_ + "/" + folderName(); }

  void step() {
    static constexpr std::array operations{
        &RandomDisk::changeFile,           &RandomDisk::changeFile,      &RandomDisk::changeThroughMapping,
        &RandomDisk::changeThroughMapping, &RandomDisk::changeKept,      &RandomDisk::changeKept,
        &RandomDisk::changeAllocation,     &RandomDisk::linkFile,        &RandomDisk::moveFile,
        &RandomDisk::moveFolder,           &RandomDisk::moveFolder,      &RandomDisk::exchange,
        &RandomDisk::moveAcrossTheBorder,  &RandomDisk::changeFolders,   &RandomDisk::changeFolders,
        &RandomDisk::replaceFolder,        &RandomDisk::changeFacts,     &RandomDisk::changeFacts,
        &RandomDisk::changeFacts,          &RandomDisk::createAndDelete, &RandomDisk::fillAndExchange,
        &RandomDisk::fillAndExchange};
    (this->*operations[below(operations.size())])();
  }

  std::string fileName() {
    static constexpr std::array names{"0", "1", "2", "3", "4", "5", ".git"};
    return names[below(names.size())];
  }

  std::string folderName() {
    static constexpr std::array names{"a", "b", "c", "d", "e", "caf\u00e9"};
    return names[below(names.size())];
  }

  // An existing folder, possibly the root; mostly a deep one, so that most of the tree stays unchanged.
  std::string folder() {
    std::string path = root_;
    for (auto depth = below(4) == 0 ? below(3) : 2 + below(4); depth > 0; --depth) {
      const std::string next = path + "/" + folderName();
      if (!isFolder(next)) break;
      path = next;
    }
    return path;
  }

  // The path of a file, which mostly exists.
  std::string file() {
    std::string path;
    for (auto tries = 1 + below(6); tries > 0; --tries) {
      path = folder() + "/" + fileName();
      struct stat status {};
      if (lstat(path.c_str(), &status) == 0) break;
    }
    return path;
  }

  std::string subfolderThatIsThere() {
    std::string path = subfolder();
    for (int tries = 0; tries < 4 && !isFolder(path); ++tries) path = subfolder();
    return path;
  }

  void write(const std::string& path, int flags, std::size_t size) {
    const int file = open(path.c_str(), O_CREAT | O_WRONLY | O_NOFOLLOW | O_CLOEXEC | flags, 0644);
    if (file < 0) return;
    const std::string text(size, 'x');
    if (::write(file, text.data(), text.size()) >= 0 && kept_.size() < keptLimit && below(8) == 0) {
      kept_.push_back(file);
    } else {
      close(file);
    }
  }

  void makeTree(const std::string& path, int depth) {
    if (mkdir(path.c_str(), 0755) != 0) return;
    for (auto files = below(4); files > 0; --files) write(path + "/" + fileName(), 0, below(20'000));
    if (depth == 0) return;
    for (auto folders = 1 + below(4); folders > 0; --folders) makeTree(path + "/" + folderName(), depth - 1);
  }

  void removeTree(const std::string& path) {
    if (changesPermissions_) chmod(path.c_str(), 0755);
    DIR* open = opendir(path.c_str());
    if (open == nullptr) return;
    while (const dirent* entry = readdir(open)) {
      const std::string name = entry->d_name;
      if (name == "." || name == "..") continue;
      if (unlink((path + "/" + name).c_str()) != 0) removeTree(path + "/" + name);
    }
    closedir(open);
    if (path != root_ && path != outside_) rmdir(path.c_str());
  }

  void changeFile() {
    static constexpr std::array flags{0, O_APPEND, O_TRUNC};
    const std::string path = file();
    const auto kind = below(4);
    if (kind == 0) {
      unlink(path.c_str());
    } else {
      write(path, flags[below(flags.size())], below(kind == 1 ? 60'000 : 6'000));
    }
  }

  // Fills a page of a hole. No event reports this until the file is closed.
  void changeThroughMapping() {
    constexpr std::size_t size = 65'536;
    if (withHoles_.empty() || below(3) == 0) {
      withHoles_.push_back(file());
      write(withHoles_.back(), 0, 0);
      if (truncate(withHoles_.back().c_str(), static_cast<off_t>(size)) != 0) withHoles_.pop_back();
      return;
    }
    const auto at = withHoles_.begin() + static_cast<std::ptrdiff_t>(below(withHoles_.size()));
    const std::string path = *at;
    const int opened = open(path.c_str(), O_RDWR | O_NOFOLLOW | O_CLOEXEC);
    struct stat status {};
    if (opened >= 0 && fstat(opened, &status) == 0 && status.st_size >= static_cast<off_t>(size)) {
      void* mapped = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, opened, 0);
      static_cast<char*>(mapped)[below(size)] = 'm';
      munmap(mapped, size);
    } else {
      withHoles_.erase(at);
    }
    close(opened);
  }

  void changeKept() {
    if (kept_.empty()) return;
    const auto at = kept_.begin() + static_cast<std::ptrdiff_t>(below(kept_.size()));
    if (below(3) == 0) {
      close(*at);
      kept_.erase(at);
      return;
    }
    const std::string text(below(9'000), 'k');
    if (::write(*at, text.data(), text.size()) < 0) return;
  }

  void changeAllocation() {
    const std::string path = file();
    if (below(2) == 0) {
      if (truncate(path.c_str(), static_cast<off_t>(below(50'000))) != 0) return;
      return;
    }
    const int opened = open(path.c_str(), O_WRONLY | O_NOFOLLOW | O_CLOEXEC);
    if (opened < 0) return;
    const int mode = below(2) == 0 ? 0 : FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE;
    fallocate(opened, mode, static_cast<off_t>(below(9'000)), static_cast<off_t>(1 + below(30'000)));
    close(opened);
  }

  void linkFile() {
    const std::string in = folder();
    if (below(4) == 0) {
      if (symlink("a", (in + "/" + fileName()).c_str()) != 0) return;
    } else if (link((in + "/" + fileName()).c_str(), (in + "/" + fileName()).c_str()) != 0) {
      return;
    }
  }

  void moveFile() {
    const std::string from = file();
    if (hasOneName(from)) rename(from.c_str(), file().c_str());
  }

  // Moves a folder, also away and back again, and onto an empty folder.
  void moveFolder() {
    const std::string from = subfolderThatIsThere();
    if (below(3) > 0) {
      rename(from.c_str(), subfolder().c_str());
      return;
    }
    const std::string between = folder() + "/between";
    if (rename(from.c_str(), between.c_str()) != 0) return;
    if (rename(between.c_str(), from.c_str()) != 0) removeTree(between);
  }

  void moveAcrossTheBorder() {
    const std::string elsewhere = outsideFolder();
    const auto kind = below(4);
    if (kind == 0) rename(subfolderThatIsThere().c_str(), elsewhere.c_str());
    if (kind == 1) rename(elsewhere.c_str(), subfolder().c_str());
    if (kind == 2) makeTree(elsewhere, 2);
    if (kind == 3) write(elsewhere + "/" + fileName(), O_APPEND, below(9'000));
  }

  void exchange() {
    const std::string one = subfolderThatIsThere();
    std::string other = subfolderThatIsThere();
    if (below(4) == 0) {
      other = file();
      if (!hasOneName(other)) return;
    }
    renameat2(AT_FDCWD, one.c_str(), AT_FDCWD, other.c_str(), RENAME_EXCHANGE);
  }

  // Adds a tree to a folder and moves the folder before the recorder can look.
  void fillAndExchange() {
    const std::string one = subfolderThatIsThere();
    makeTree(one + "/" + folderName(), 1);
    renameat2(AT_FDCWD, one.c_str(), AT_FDCWD, subfolderThatIsThere().c_str(), RENAME_EXCHANGE);
  }

  // Replaces a folder by a link, a file or another folder of the same name.
  void replaceFolder() {
    const std::string path = subfolderThatIsThere();
    if (below(2) == 0) {
      removeTree(path);
    } else if (rename(path.c_str(), outsideFolder().c_str()) != 0) {
      return;
    }
    const auto kind = below(3);
    if (kind == 0 && symlink(outside_.c_str(), path.c_str()) != 0) return;
    if (kind == 1) write(path, 0, below(9'000));
    if (kind == 2) makeTree(path, 2);
    if (below(2) == 0) unlink(path.c_str());
  }

  void changeFolders() {
    const std::string path = subfolder();
    const auto kind = below(6);
    if (kind == 0) removeTree(path);
    if (kind == 1) rmdir(path.c_str());
    if (kind == 2) mkdir(path.c_str(), 0755);
    if (kind > 2) makeTree(path, 3);
  }

  void changeFacts() {
    static constexpr std::array<mode_t, 6> modes{0755, 0755, 0, 0311, 0444, 0700};
    // The kernel reports setting one of the times as MODIFY or ACCESS, and setting both as ATTRIB.
    const timespec times[2]{{0, below(2) == 0 ? UTIME_OMIT : 0}, {static_cast<time_t>(below(1'000'000)), 0}};
    const auto kind = below(4);
    const std::string path = kind == 2 ? subfolder() : file();
    if (kind == 1 && hasOneName(path) && !std::filesystem::is_symlink(path)) chmod(path.c_str(), 0600);
    if (kind == 2 && isFolder(path)) {
      chmod(path.c_str(), changesPermissions_ ? modes[below(modes.size())] : 0711);
    }
    if (kind == 0 || kind == 3) utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW);
  }

  void createAndDelete() {
    const std::string path = subfolder();
    const auto times = 1 + below(4);
    for (std::uint64_t i = 0; i < times; ++i) {
      makeTree(path, 1);
      removeTree(path);
    }
    if (below(2) == 0) makeTree(path, 1);
  }

  static constexpr std::size_t keptLimit = 8;

  std::string root_;
  std::string outside_;
  std::mt19937_64 random_;
  bool changesPermissions_ = false;
  std::vector<int> kept_;  // files that stay open
  std::vector<std::string> withHoles_;
};

}  // namespace spacemint::support
