#pragma once

#include "core/host/FileHandle.h"

#include <fcntl.h>
#include <linux/fuse.h>
#include <poll.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cctype>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <span>
#include <string>
#include <thread>
#include <vector>

namespace spacemint::support {

/// A file system (FUSE) on a device that answers every request after the same time, however many there are.
/// It holds 20 folders, in each 15 folders, and in each 4 files of up to six blocks. Mount it in a child
/// process that has its own mounts.
class SlowFiles {
 public:
  static constexpr int folderCount = 20 * 15;
  static constexpr int fileCount = folderCount * 4;

  /// False if it could not be mounted.
  bool mountAt(const std::string& path, std::chrono::microseconds delay) {
    delay_ = delay;
    device_ = FileHandle{open("/dev/fuse", O_RDWR | O_CLOEXEC)};
    const std::string options =
        "fd=" + std::to_string(device_.get()) + ",rootmode=40755,user_id=0,group_id=0";
    if (!device_ || mount("slow", path.c_str(), "fuse", MS_NOSUID | MS_NODEV, options.c_str()) != 0)
      return false;
    path_ = path;
    server_ = std::thread([this] { serve(); });
    return true;
  }
  SlowFiles() = default;
  SlowFiles(const SlowFiles&) = delete;
  SlowFiles& operator=(const SlowFiles&) = delete;
  ~SlowFiles() {
    if (!server_.joinable()) return;
    umount2(path_.c_str(), MNT_FORCE);
    server_.join();
  }

  /// The most requests that somebody waited for at the same time since the last call.
  std::size_t takeMostAtOnce() { return mostAtOnce_.exchange(0); }
  /// Whether the facts of each folder's files were asked for in the order of their inodes since the last
  /// call.
  bool takeIsInInodeOrder() { return isInInodeOrder_.exchange(true); }

 private:
  using Clock = std::chrono::steady_clock;
  using Id = std::uint64_t;
  struct Reply {
    Clock::time_point due;
    std::vector<std::byte> bytes;
  };

  static constexpr std::array<Id, 4> children{20, 15, 4, 0};

  // The root is 1. A folder's children have the 32 numbers from 32 times its own on, listed backwards.
  static int depth(Id id) { return id < 32 ? 0 : 1 + depth(id / 32); }
  static Id child(Id parent, Id place) {
    return parent * 32 + children.at(std::size_t(depth(parent))) - place;
  }

  static fuse_attr attributes(Id id) {
    const bool isFolder = depth(id) < 3;
    const std::uint64_t blocks = isFolder ? 8 : id % 7 * 8;
    return {.ino = id,
            .size = blocks * 512,
            .blocks = blocks,
            .mode = isFolder ? S_IFDIR | 0755U : S_IFREG | 0644U,
            .nlink = 1,
            .blksize = 4'096};
  }

  template <class... Part>
  void reply(std::uint64_t unique, int error, const Part&... parts) {
    Reply reply{.due = Clock::now() + delay_, .bytes = {}};
    fuse_out_header header{.len = sizeof(header), .error = -error, .unique = unique};
    ((header.len += std::uint32_t(std::span{parts}.size_bytes())), ...);
    const auto add = [&](auto bytes) { reply.bytes.insert(reply.bytes.end(), bytes.begin(), bytes.end()); };
    add(std::as_bytes(std::span{&header, 1}));
    (add(std::as_bytes(std::span{parts})), ...);
    replies_.push_back(std::move(reply));
    mostAtOnce_ = std::max(mostAtOnce_.load(), replies_.size());
  }
  template <class Value>
  static std::span<const Value> one(const Value& value) {
    return {&value, 1};
  }

  void answer(const fuse_in_header& request, const char* body) {
    switch (request.opcode) {
      case FUSE_INIT: {
        const fuse_init_out out{.major = FUSE_KERNEL_VERSION,
                                .minor = 31,
                                .flags = FUSE_PARALLEL_DIROPS,
                                .max_background = 64,
                                .congestion_threshold = 64,
                                .max_write = 4'096};
        return reply(request.unique, 0, one(out));
      }
      case FUSE_LOOKUP: {
        const Id place = std::strtoull(body, nullptr, 10);
        const int above = depth(request.nodeid);
        if (!std::isdigit(static_cast<unsigned char>(*body)) || place >= children.at(std::size_t(above)))
          return reply(request.unique, ENOENT);
        const Id id = child(request.nodeid, place);
        if (above == 2) {
          if (id / 32 == lastAsked_ / 32 && id < lastAsked_) isInInodeOrder_ = false;
          lastAsked_ = id;
        }
        return reply(request.unique, 0, one(fuse_entry_out{.nodeid = id, .attr = attributes(id)}));
      }
      case FUSE_GETATTR:
        return reply(request.unique, 0, one(fuse_attr_out{.attr = attributes(request.nodeid)}));
      case FUSE_OPENDIR:
        return reply(request.unique, 0, one(fuse_open_out{}));
      case FUSE_READDIR:
        return list(request, reinterpret_cast<const fuse_read_in*>(body)->offset);
      case FUSE_RELEASEDIR:
        return confirm(request.unique);
      case FUSE_FORGET:
      case FUSE_BATCH_FORGET:
      case FUSE_INTERRUPT:
        return;
      default:
        return reply(request.unique, ENOSYS);
    }
  }

  // At once, because the kernel closes folders behind the back of who used them.
  void confirm(std::uint64_t unique) {
    const fuse_out_header header{.len = sizeof(header), .error = 0, .unique = unique};
    [[maybe_unused]] const ssize_t written = write(device_.get(), &header, sizeof header);
  }

  void list(const fuse_in_header& request, std::uint64_t offset) {
    std::vector<std::byte> entries;
    for (Id place = offset; place < children.at(std::size_t(depth(request.nodeid))); ++place) {
      const std::string name = std::to_string(place);
      const Id id = child(request.nodeid, place);
      const fuse_dirent entry{.ino = id,
                              .off = place + 1,
                              .namelen = std::uint32_t(name.size()),
                              .type = attributes(id).mode >> 12U};
      entries.resize(entries.size() + FUSE_DIRENT_ALIGN(FUSE_NAME_OFFSET + name.size()));
      std::byte* at = entries.data() + entries.size() - FUSE_DIRENT_ALIGN(FUSE_NAME_OFFSET + name.size());
      std::memcpy(at, &entry, FUSE_NAME_OFFSET);
      std::memcpy(at + FUSE_NAME_OFFSET, name.data(), name.size());
    }
    reply(request.unique, 0, std::span<const std::byte>{entries});
  }

  // Ends when the file system is unmounted.
  void serve() {
    std::vector<std::byte> buffer(FUSE_MIN_READ_BUFFER + 4'096);
    for (;;) {
      pollfd ready{device_.get(), POLLIN, 0};
      timespec wait{};
      if (!replies_.empty()) wait.tv_nsec = std::max<long>(0, (replies_.front().due - Clock::now()).count());
      ppoll(&ready, 1, replies_.empty() ? nullptr : &wait, nullptr);
      if (ready.revents != 0) {
        const ssize_t length = read(device_.get(), buffer.data(), buffer.size());
        if (length < 0 && errno != EINTR && errno != EAGAIN && errno != ENOENT) return;
        const auto* request = reinterpret_cast<const fuse_in_header*>(buffer.data());
        if (length > 0) answer(*request, reinterpret_cast<const char*>(request + 1));
      }
      for (; !replies_.empty() && replies_.front().due <= Clock::now(); replies_.pop_front()) {
        const auto& bytes = replies_.front().bytes;
        if (write(device_.get(), bytes.data(), bytes.size()) < 0 && errno == ENODEV) return;
      }
    }
  }

  std::string path_;
  std::chrono::microseconds delay_{0};
  FileHandle device_;
  std::deque<Reply> replies_;  // in the order in which they are due
  Id lastAsked_ = 0;
  std::atomic<std::size_t> mostAtOnce_ = 0;
  std::atomic<bool> isInInodeOrder_ = true;
  std::thread server_;
};

}  // namespace spacemint::support
