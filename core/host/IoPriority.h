#pragma once

namespace spacemint {

/// Puts the calling thread into the idle I/O class for as long as the object exists: the disk serves other
/// programs first. Must be destroyed on the same thread. Where the system refuses, it has no effect.
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
