#include "core/analysis/DockerUsage.h"

#include "core/analysis/SizeText.h"
#include "core/base/AsciiText.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <charconv>
#include <optional>

namespace spacemint::DevTools {

namespace {

constexpr std::string_view connectionErrors[] = {"cannot connect",
                                                 "could not connect",
                                                 "failed to connect",
                                                 "connection refused",
                                                 "is the docker daemon running",
                                                 "daemon is not running",
                                                 "no such file or directory (os error 2)"};

std::int64_t wholeNumber(std::string_view text) {
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  std::int64_t number = 0;
  const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), number);
  return problem == std::errc{} && end == text.data() + text.size() ? number : 0;
}

Bytes sizeOf(std::string_view text) {
  return std::max<Bytes>(0, parseSize(text).value_or(0));
}

std::optional<DockerUsage> usage(std::string_view line) {
  const auto object = nlohmann::json::parse(line, nullptr, false);
  for (const char* key : {"Type", "TotalCount", "Active", "Size", "Reclaimable"}) {
    if (!object.is_object() || !object.contains(key) || !object[key].is_string()) return std::nullopt;
  }
  const auto text = [&](const char* key) -> const std::string& {
    return object[key].get_ref<const std::string&>();
  };
  return DockerUsage{.type = text("Type"),
                     .count = wholeNumber(text("TotalCount")),
                     .active = wholeNumber(text("Active")),
                     .size = sizeOf(text("Size")),
                     .reclaimable = sizeOf(text("Reclaimable"))};
}

}  // namespace

std::vector<DockerUsage> parseDockerDF(std::string_view text) {
  std::vector<DockerUsage> rows;
  for (const std::string_view line : lines(text)) {
    if (auto row = usage(line)) rows.push_back(std::move(*row));
  }
  return rows;
}

bool isConnectionError(std::string_view text) {
  const std::string lower = lowerCased(text);
  return std::ranges::any_of(
      connectionErrors, [&](std::string_view phrase) { return lower.find(phrase) != std::string::npos; });
}

}  // namespace spacemint::DevTools
