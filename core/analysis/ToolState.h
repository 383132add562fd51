#pragma once

#include "core/analysis/DockerUsage.h"
#include "core/base/AsciiText.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace spacemint::DevTools {

/// The command that lists what a tool stores, and the time limit for the command.
struct ToolQuery {
  std::string_view program;
  std::span<const std::string_view> arguments;
  std::chrono::seconds timeout;
};

inline constexpr std::array<std::string_view, 4> dockerArguments{"system", "df", "--format", "{{json .}}"};
inline constexpr ToolQuery dockerQuery{"docker", dockerArguments, std::chrono::seconds{30}};
inline constexpr std::array<std::string_view, 1> ollamaArguments{"list"};
inline constexpr ToolQuery ollamaQuery{"ollama", ollamaArguments, std::chrono::seconds{15}};

/// The result of running a tool.
struct ToolAnswer {
  /// The exit status.
  std::int32_t status = 0;
  std::string output;
  std::string error;
  bool timedOut = false;
};

/// The state of a tool as far as the product knows.
template <class Payload>
struct ToolState {
  enum class Kind : std::uint8_t {
    /// The tool answered.
    ready,
    /// The tool answered with an error.
    failed,
    /// No query was made yet.
    unknown,
    /// The first query is running.
    checking,
    /// The tool cannot be found or started.
    notInstalled,
    /// The tool's service does not answer, or not in time.
    notRunning
  };

  Kind kind = Kind::unknown;
  /// The parsed answer, if `ready`.
  Payload payload = {};
  /// The reason, if `failed`.
  std::string error = {};

  bool operator==(const ToolState&) const = default;
};

/// The last non-blank line of a text, trimmed; "Unknown error" if all lines are blank.
std::string lastLine(std::string_view text);

/// The state of a tool after a query. `answer` is absent if the tool could not be started; `parse` turns the
/// output of a successful query into the payload.
template <class Parse, class State = ToolState<std::invoke_result_t<Parse, std::string_view>>>
State toolState(const std::optional<ToolAnswer>& answer, Parse parse) {
  using Kind = typename State::Kind;
  if (!answer) return {.kind = Kind::notInstalled};
  if (answer->status == 0 && !answer->timedOut)
    return {.kind = Kind::ready, .payload = parse(answer->output)};
  if (answer->timedOut || isConnectionError(answer->error)) return {.kind = Kind::notRunning};
  return {.kind = Kind::failed, .error = lastLine(answer->error)};
}

}  // namespace spacemint::DevTools
