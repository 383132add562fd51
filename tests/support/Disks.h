#pragma once

#include "support/OwnMounts.h"
#include "support/TemporaryFolder.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace spacemint::support {

/// Runs a line of the shell, in silence; true if it succeeds.
inline bool shell(const std::string& line) {
  return std::system(("PATH=$PATH:/usr/sbin:/sbin; { " + line + "\n} >/dev/null 2>&1").c_str()) == 0;
}

/// Makes a disk of 512 MB with a file system of its own and mounts it at the folder NAME of `folder`. For a
/// process with its own mounts. Returns the mount point; empty if that failed.
inline std::string mountDisk(const TemporaryFolder& folder, const std::string& type,
                             const std::string& makeOptions, const std::string& name = "") {
  const std::string place = folder / (name.empty() ? type : name);
  std::filesystem::create_directories(place);
  const std::string image = place + ".image";
  const bool mounted = shell("truncate -s 512M " + image + " && mkfs." + type + " " + makeOptions + " " +
                             image + " && mount -o loop " + image + " " + place);
  return mounted ? place : "";
}

/// Whether this process may mount loop devices and has the programs that make file systems.
inline bool canMountDisks() {
  const TemporaryFolder folder;
  return geteuid() == 0 && succeedsInChild([&] {
           return enterOwnMounts() && !mountDisk(folder, "ext4", "").empty() &&
                  !mountDisk(folder, "btrfs", "").empty();
         });
}

}  // namespace spacemint::support
