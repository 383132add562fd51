#pragma once

#include "core/places/Place.h"
#include "core/tree/Snapshot.h"
#include "spacemintctl/Answer.h"
#include "spacemintctl/Console.h"

#include <nlohmann/json.hpp>

#include <expected>
#include <optional>
#include <span>
#include <string>

namespace spacemint::ctl {

using Json = nlohmann::ordered_json;

/// The input of a section.
struct Scene {
  Snapshot snapshot;
  Wording wording;
  Environment environment;
  Date now;
  /// The date of the scan to compare with, as for `storedScan`; empty for the default.
  std::string since = {};
  /// True if no date was given for `snapshot`.
  bool isNewest = true;
  /// The largest number of findings in a text.
  std::size_t top = 10;
  /// Findings smaller than this (in bytes) are left out.
  Bytes minimum = 0;
};

/// The findings of a section, as text for the user and as JSON for other programs.
struct Findings {
  std::string text;
  Json json;
  /// False if the report shall leave the section out.
  bool isWorthReporting = true;
};

/// A section of the report, which most sections are also a command for.
struct Section {
  /// The name of the command and of the member in the report's JSON.
  const char* command = nullptr;
  /// The command's description; null if the section is only in the report, or another function adds the
  /// command.
  const char* description = nullptr;
  /// The heading in the report.
  const char* title = nullptr;
  /// The default of --min-size in bytes; absent if the command has no such option.
  std::optional<Bytes> minimum;
  /// False if the section runs a tool and needs no scan.
  bool looksAtScan = true;
  std::expected<Findings, Error> (*find)(const Scene& scene) = nullptr;
};

/// Every section, in the order of the report.
std::span<const Section> sections();

std::expected<Findings, Error> growthFindings(const Scene& scene);
std::expected<Findings, Error> suggestionFindings(const Scene& scene);
std::expected<Findings, Error> trashFindings(const Scene& scene);
std::expected<Findings, Error> backupFindings(const Scene& scene);
std::expected<Findings, Error> largestFolderFindings(const Scene& scene);
std::expected<Findings, Error> largestFileFindings(const Scene& scene);
std::expected<Findings, Error> cacheFindings(const Scene& scene);
std::expected<Findings, Error> ollamaFindings(const Scene& scene);
std::expected<Findings, Error> huggingFaceFindings(const Scene& scene);
std::expected<Findings, Error> dockerFindings(const Scene& scene);
std::expected<Findings, Error> worktreeFindings(const Scene& scene);

// Functions that several sections use.

/// The earlier scan to compare the scene's with; absent if there is none.
std::expected<std::optional<Snapshot>, Error> baselineOf(const Scene& scene);
/// A path for display.
std::string shownPath(const std::string& path, const Scene& scene);
std::string shownSize(Bytes size, const Scene& scene);
/// A text for JSON, with U+FFFD in place of invalid UTF-8.
Json jsonText(std::string_view text);
Json jsonOptional(const std::optional<std::string>& text);
Json jsonDate(std::optional<Date> date);
/// Adds a last row that says how many of `count` findings the table does not show, if there are more than
/// `top`.
void addRest(Table& table, std::size_t count, std::size_t top);

}  // namespace spacemint::ctl
