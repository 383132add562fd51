#pragma once

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>

namespace spacemint::support {

/// An empty folder that is gone, with all that came into it, when the test ends.
class TemporaryFolder {
 public:
  explicit TemporaryFolder(const std::filesystem::path& in = std::filesystem::temp_directory_path())
      : path_((in / "spacemint-XXXXXX").string()) {
    if (mkdtemp(path_.data()) == nullptr) throw std::runtime_error("no temporary folder " + path_);
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::string& path() const { return path_; }
  std::string operator/(std::string_view name) const { return path_ + "/" + std::string{name}; }

 private:
  std::string path_;
};

}  // namespace spacemint::support
