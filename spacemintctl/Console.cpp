#include "spacemintctl/Console.h"

#include "core/base/ByteFormat.h"
#include "core/base/Translation.h"
#include "core/base/Unicode.h"
#include "spacemintctl/browse/Cells.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <iomanip>
#include <sstream>
#include <system_error>

namespace spacemint::ctl {

namespace {

std::string formatted(Date date, std::tm* (*split)(const std::time_t*, std::tm*), const char* format) {
  const std::time_t time = std::chrono::floor<std::chrono::seconds>(date).time_since_epoch().count();
  std::tm parts{};
  if (split(&time, &parts) == nullptr) return "?";
  std::ostringstream text;
  text << std::put_time(&parts, format);
  return text.str();
}

}  // namespace

std::string printable(std::string_view text) {
  constexpr std::string_view replacementCharacter = "\xef\xbf\xbd";
  std::string safe = withInvalidUtf8Replaced(text);
  for (std::size_t at = 0; at < safe.size(); ++at) {
    const auto byte = static_cast<unsigned char>(safe[at]);
    // U+0080 to U+009F are control characters too.
    const bool isC1 = byte == 0xc2 && at + 1 < safe.size() && static_cast<unsigned char>(safe[at + 1]) < 0xa0;
    if (byte >= 0x20 && byte != 0x7f && !isC1) continue;
    safe.replace(at, isC1 ? 2 : 1, replacementCharacter);
    at += replacementCharacter.size() - 1;
  }
  return safe;
}

Date currentTime() {
  return std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now());
}

std::string localTime(Date date) {
  return formatted(date, localtime_r, "%Y-%m-%d %H:%M:%S");
}

std::string universalTime(Date date) {
  return formatted(date, gmtime_r, "%Y-%m-%dT%H:%M:%SZ");
}

std::string percentage(std::int64_t part, std::int64_t whole) {
  if (whole < 1) return "";
  const double share = static_cast<double>(part) / static_cast<double>(whole);
  return i18n("{number} %", {{"number", numberText(std::lround(share * 100))}});
}

std::string restText(std::size_t count) {
  return i18np("and {count} more", "and {count} more", static_cast<std::int64_t>(count),
               {{"count", numberText(static_cast<std::int64_t>(count))}});
}

std::string Table::text() const {
  std::vector<std::size_t> widths;
  for (const auto& row : rows_) {
    widths.resize(std::max(widths.size(), row.size()));
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], columnsOf(row[i]));
  }
  std::string text;
  for (const auto& row : rows_) {
    std::string line;
    for (std::size_t i = 0; i < row.size(); ++i) {
      const bool isPadded = i + 1 < row.size();
      const std::string padding(isPadded ? widths[i] - columnsOf(row[i]) : 0, ' ');
      line += "  " + (i < rightAligned_ ? padding + row[i] : row[i] + padding);
    }
    line.erase(line.find_last_not_of(' ') + 1);
    text += line + '\n';
  }
  return text;
}

bool print(const std::string& text) {
  if (std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0)
    return true;
  complain(i18n("standard output: {reason}", {{"reason", std::generic_category().message(errno)}}));
  return false;
}

void complain(const std::string& message) {
  std::fprintf(stderr, "spacemintctl: %s\n", message.c_str());
}

}  // namespace spacemint::ctl
