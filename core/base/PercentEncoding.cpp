#include "core/base/PercentEncoding.h"

namespace spacemint {

std::string percentEncoded(std::string_view path) {
  constexpr std::string_view plain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string text;
  for (const char character : path) {
    if (plain.contains(character)) {
      text += character;
      continue;
    }
    const auto byte = static_cast<unsigned char>(character);
    text += '%';
    text += digits[byte / 16U];
    text += digits[byte % 16U];
  }
  return text;
}

}  // namespace spacemint
