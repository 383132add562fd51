#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace spacemint::support {

/// Writes a file anew, with the folders that it lies in.
inline std::string writeText(const std::string& path, const std::string& text = "text") {
  std::filesystem::create_directories(std::filesystem::path{path}.parent_path());
  std::ofstream(path, std::ios::binary) << text;
  return path;
}

/// Empty where there is no file.
inline std::string readText(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>{file}, {}};
}

/// Writes a program that the shell runs.
inline std::string writeProgram(const std::string& path, const std::string& script) {
  writeText(path, "#!/bin/sh\n" + script + "\n");
  std::filesystem::permissions(path, std::filesystem::perms::owner_all);
  return path;
}

/// A file that takes so much of the disk, without its bytes being written; false where it is full.
inline bool allocateFile(const std::string& path, off_t bytes) {
  std::filesystem::create_directories(std::filesystem::path{path}.parent_path());
  const int file = open(path.c_str(), O_CREAT | O_TRUNC | O_WRONLY | O_CLOEXEC, 0644);
  const bool allocated = posix_fallocate(file, 0, bytes) == 0;
  close(file);
  return allocated;
}

/// The names in a folder, in order.
inline std::vector<std::string> namesIn(const std::string& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator{folder}) {
    names.push_back(entry.path().filename());
  }
  std::ranges::sort(names);
  return names;
}

/// How many descriptors this process has open.
inline std::size_t openHandles() {
  return namesIn("/proc/self/fd").size();
}

}  // namespace spacemint::support
