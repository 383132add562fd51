#pragma once

#include <string>
#include <string_view>

namespace spacemint {

/// A stack of file names in one string, so that a million names cost little more than their bytes. One
/// thread.
class NameList {
 public:
  bool empty() const { return text_.empty(); }

  void push(std::string_view name) {
    text_ += name;
    text_ += '\0';  // no file name contains it
  }

  /// The newest name. The list must not be empty. Valid until the next change.
  std::string_view last() const {
    const std::string_view text{text_.data(), text_.size() - 1};
    const std::size_t before = text.rfind('\0');
    return before == std::string_view::npos ? text : text.substr(before + 1);
  }

  void popLast() { text_.resize(text_.size() - last().size() - 1); }

 private:
  std::string text_;
};

}  // namespace spacemint
