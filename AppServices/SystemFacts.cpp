#include "AppServices/SystemFacts.h"

#include "core/base/CalendarDays.h"

#include <QString>
#include <QSysInfo>

#include <algorithm>
#include <cstdio>

namespace spacemint {

namespace {

std::string_view leadingDigits(std::string_view text) {
  return text.substr(0, std::min(text.find_first_not_of("0123456789"), text.size()));
}

std::string packageArchitecture(const std::string& cpu) {
  if (cpu == "x86_64") return "amd64";
  return cpu == "arm" ? "armhf" : cpu;
}

}  // namespace

std::string majorAndMinor(std::string_view version) {
  const std::string_view major = leadingDigits(version);
  if (major.empty()) return {};
  version.remove_prefix(major.size());
  const std::string_view minor =
      version.starts_with('.') ? leadingDigits(version.substr(1)) : std::string_view{};
  return std::string{major} + '.' + std::string{minor.empty() ? "0" : minor};
}

SystemFacts SystemFacts::current() {
  const std::string kernel = majorAndMinor(QSysInfo::kernelVersion().toStdString());
  // A rolling distribution has no version.
  const std::string version = majorAndMinor(QSysInfo::productVersion().toStdString());
  return {.version = version.empty() ? kernel : version,
          .kernel = kernel,
          .architecture = packageArchitecture(QSysInfo::buildCpuArchitecture().toStdString())};
}

std::string dayText(Date date, const std::string& timeZone) {
  const auto utc = std::chrono::local_days{std::chrono::floor<std::chrono::days>(date).time_since_epoch()};
  const std::chrono::year_month_day day{calendarDay(date, timeZone).value_or(utc)};
  char text[32];
  std::snprintf(text, sizeof text, "%04d-%02u-%02u", static_cast<int>(day.year()),
                static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()));
  return text;
}

}  // namespace spacemint
