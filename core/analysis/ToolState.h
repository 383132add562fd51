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

/// The command that asks a tool what it stores, and how long the answer may take.
struct ToolQuery {
  std::string_view program;
  std::span<const std::string_view> arguments;
  std::chrono::seconds timeout;
};

inline constexpr std::array<std::string_view, 4> dockerArguments{"system", "df", "--format", "{{json .}}"};
inline constexpr ToolQuery dockerQuery{"docker", dockerArguments, std::chrono::seconds{30}};
inline constexpr std::array<std::string_view, 1> ollamaArguments{"list"};
inline constexpr ToolQuery ollamaQuery{"ollama", ollamaArguments, std::chrono::seconds{15}};

/// What a tool answered.
struct ToolAnswer {
  /// The exit status.
  std::int32_t status = 0;
  std::string output;
  std::string error;
  bool timedOut = false;
};

/// What is known of a tool.
template <class Payload>
struct ToolState {
  enum class Kind : std::uint8_t {
    /// It answered.
    ready,
    /// It answered with an error.
    failed,
    /// Never asked.
    unknown,
    /// It is being asked, and there is no earlier answer.
    checking,
    /// It cannot be found or started.
    notInstalled,
    /// Its service does not answer, or not in time.
    notRunning
  };

  Kind kind = Kind::unknown;
  /// The answer, when ready.
  Payload payload = {};
  /// The reason, when failed.
  std::string error = {};

  bool operator==(const ToolState&) const = default;
};

/// The last line of a text that is not blank, without the spaces and tabs around it; "Unknown error" for a
/// text without one.
std::string lastLine(std::string_view text);

/// The state of a tool after a query; no answer at all means that it could not be started.
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
