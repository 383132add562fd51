#pragma once

#include <cstdint>
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
  RandomDisk(std::string root, std::string outside, std::uint64_t seed);
  ~RandomDisk();
  RandomDisk(const RandomDisk&) = delete;
  RandomDisk& operator=(const RandomDisk&) = delete;

  /// Also removes and restores permissions of folders. For a user whom permissions bind.
  void changePermissions() { changesPermissions_ = true; }

  void step();
  void steps(int count) {
    for (int i = 0; i < count; ++i) step();
  }

 private:
  std::uint64_t below(std::uint64_t limit) { return random_() % limit; }
  std::string fileName();
  std::string folderName();
  std::string folder();
  // The path of a file, which mostly exists.
  std::string file();
  std::string subfolder() { return folder() + "/" + folderName(); }
  std::string subfolderThatIsThere();
  std::string outsideFolder() { return outside_ + "/" + folderName(); }

  void write(const std::string& path, int flags, std::size_t size);
  void makeTree(const std::string& path, int depth);
  void removeTree(const std::string& path);

  void changeFile();
  void changeThroughMapping();
  void changeKept();
  void changeAllocation();
  void linkFile();
  void moveFile();
  void moveFolder();
  void moveAcrossTheBorder();
  void exchange();
  void fillAndExchange();
  void replaceFolder();
  void changeFolders();
  void changeFacts();
  void createAndDelete();

  std::string root_;
  std::string outside_;
  std::mt19937_64 random_;
  bool changesPermissions_ = false;
  std::vector<int> kept_;  // files that stay open
  std::vector<std::string> withHoles_;
};

}  // namespace spacemint::support
