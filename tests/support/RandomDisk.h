#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace spacemint::support {

/// Does to a folder what programs do to a disk, one random thing after the other: the same seed does the
/// same.
///
/// Names are few, so that things get in each other's way. Files with several names have them all in one
/// folder, because a journal of folders tells nothing of a name that was not used.
class RandomDisk {
 public:
  /// Things also move between `root` and `outside`, which must be on the same volume.
  RandomDisk(std::string root, std::string outside, std::uint64_t seed);
  ~RandomDisk();
  RandomDisk(const RandomDisk&) = delete;
  RandomDisk& operator=(const RandomDisk&) = delete;

  /// Also takes the rights to folders away and gives them back; for a user whom permissions bind.
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
  // The path of a file, mostly of one that is there.
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
