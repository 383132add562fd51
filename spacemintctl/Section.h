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

/// What a section looks at.
struct Scene {
  Snapshot snapshot;
  Wording wording;
  Environment environment;
  Date now;
  /// Names a scan to compare with, as `--scan` does; empty for the usual one.
  std::string since = {};
  /// How many to name in a text.
  std::size_t top = 10;
  /// Smaller findings are left out.
  Bytes minimum = 0;
};

/// What a section found, in words and with the names that other programs go by.
struct Findings {
  std::string text;
  Json json;
  /// False when the section has nothing to say, so that the report leaves it out.
  bool isWorthReporting = true;
};

/// One question about the disk with its answer: a command of its own, and a section of the report.
struct Section {
  /// The name of the command, and of the member in the report's JSON.
  const char* command;
  /// The command's description; null for a section that only the report has.
  const char* description;
  /// The heading in the report.
  const char* title;
  /// The smallest finding unless the user says otherwise; absent where size does not count.
  std::optional<Bytes> minimum;
  /// False for a section that asks a tool and needs no scan.
  bool looksAtScan;
  std::expected<Findings, Error> (*find)(const Scene& scene);
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

// Words that the sections share.

/// A path as people read it.
std::string shownPath(const std::string& path, const Scene& scene);
std::string shownSize(Bytes size, const Scene& scene);
/// A text for JSON, which is UTF-8.
Json jsonText(std::string_view text);
Json jsonOptional(const std::optional<std::string>& text);
Json jsonDate(std::optional<Date> date);
/// The last row of a table that names only some of `count` findings; empty where it names all of them.
void addRest(Table& table, std::size_t count, std::size_t top);

}  // namespace spacemint::ctl
