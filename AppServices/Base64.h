#pragma once

#include <QByteArray>

#include <algorithm>
#include <array>
#include <optional>
#include <string>

namespace spacemint {

/// The N bytes that a Base64 text stands for; absent for any other text.
template <std::size_t N>
std::optional<std::array<unsigned char, N>> bytesOfBase64(const std::string& text) {
  const auto result = QByteArray::fromBase64Encoding(QByteArray::fromStdString(text),
                                                     QByteArray::AbortOnBase64DecodingErrors);
  if (!result || result.decoded.size() != static_cast<qsizetype>(N)) return {};
  std::array<unsigned char, N> bytes{};
  std::ranges::copy(result.decoded, bytes.begin());
  return bytes;
}

}  // namespace spacemint
