#pragma once

namespace spacemint {

/// Gives the calling thread idle I/O priority while the object exists: the disk serves other programs first.
/// Destroy the object on the same thread. Has no effect if the system refuses.
class ThrottledIo {
 public:
  ThrottledIo();
  ~ThrottledIo();
  ThrottledIo(const ThrottledIo&) = delete;
  ThrottledIo& operator=(const ThrottledIo&) = delete;

 private:
  int saved_;
};

}  // namespace spacemint
