#include "Spacemint/desktop/linux/BatteryLevel.h"

#include <filesystem>
#include <fstream>

namespace spacemint {

namespace {

namespace fs = std::filesystem;

constexpr int lowPercentage = 20;

std::string fact(const fs::path& supply, const char* name) {
  std::ifstream file(supply / name);
  std::string value;
  std::getline(file, value);
  return value;
}

// Mice and keyboards have batteries too.
bool isOfTheSystem(const fs::path& supply) {
  return fact(supply, "type") == "Battery" && fact(supply, "scope") != "Device";
}

bool isLow(const fs::path& battery) {
  std::ifstream file(battery / "capacity");
  int percentage = 0;
  return file >> percentage && percentage < lowPercentage;
}

}  // namespace

bool isBatteryLow(const std::string& folder) {
  bool isDischarging = false;
  std::error_code failed;
  for (fs::directory_iterator supply(folder, failed), end; !failed && supply != end;
       supply.increment(failed)) {
    if (!isOfTheSystem(supply->path())) continue;
    if (!isLow(supply->path())) return false;
    if (fact(supply->path(), "status") == "Discharging") isDischarging = true;
  }
  return isDischarging;
}

}  // namespace spacemint
