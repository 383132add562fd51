#pragma once

namespace spacemint {

/// While it lives, the disk serves everybody else before the calling thread. Destroyed on the same thread.
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
