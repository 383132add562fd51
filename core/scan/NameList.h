#pragma once

#include <string>
#include <string_view>
#include <vector>

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

  /// The newest `limit` names, the newest first.
  std::vector<std::string_view> newest(std::size_t limit) const {
    std::vector<std::string_view> names;
    std::string_view rest = text_;
    while (!rest.empty() && names.size() < limit) {
      rest.remove_suffix(1);
      const std::size_t before = rest.rfind('\0');
      const std::size_t start = before == std::string_view::npos ? 0 : before + 1;
      names.push_back(rest.substr(start));
      rest = rest.substr(0, start);
    }
    return names;
  }

  void popLast() { text_.resize(text_.size() - last().size() - 1); }

 private:
  std::string text_;
};

}  // namespace spacemint
