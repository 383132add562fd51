#include "spacemintctl/CleanText.h"

#include "core/base/AsciiText.h"
#include "core/base/ByteFormat.h"
#include "core/base/Translation.h"
#include "core/cleanup/CleanupText.h"
#include "core/wording/FindingText.h"

#include <algorithm>
#include <utility>

namespace spacemint::ctl {

namespace {

// A word quoted for a shell.
std::string quoted(const std::string& word) {
  constexpr const char* plain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_./=:,+@%";
  if (!word.empty() && word.find_first_not_of(plain) == std::string::npos) return word;
  std::string text = "'";
  for (const char character : word) {
    if (character == '\'') {
      text += "'\\''";
    } else {
      text += character;
    }
  }
  return text + "'";
}

const char* verb(CleanupStep::Kind kind) {
  constexpr const char* verbs[] = {i18nMark("delete"), i18nMark("empty"),
                                   i18nMark("empty"),  i18nMark("move to the Trash"),
                                   i18nMark("run"),    i18nMark("run")};
  return verbs[std::to_underlying(kind)];
}

// The command as the user could type it in a shell.
std::string commandText(const ToolCommand& command) {
  std::string text;
  for (const auto& [name, value] : command.environment) text += name + "=" + quoted(value) + " ";
  text += quoted(command.program);
  for (const std::string& argument : command.arguments) text += " " + quoted(argument);
  return text;
}

Json stepJson(const CleanupStep& step) {
  Json object{{"action", verb(step.kind)}, {"path", jsonText(step.path)}, {"size", step.size}};
  if (!step.runsCommand()) return object;
  object["command"] = Json::array({jsonText(step.command.program)});
  for (const std::string& argument : step.command.arguments) object["command"].push_back(jsonText(argument));
  for (const auto& [name, value] : step.command.environment) object["environment"][name] = jsonText(value);
  return object;
}

Json failureJson(const std::optional<CleanupFailure>& failure) {
  if (!failure) return nullptr;
  constexpr const char* kinds[] = {"refused", "other", "needsFullDiskAccess", "stopped"};
  return {{"kind", kinds[std::to_underlying(failure->kind)]},
          {"message", jsonText(failure->message)},
          {"path", failure->path.empty() ? Json(nullptr) : jsonText(failure->path)}};
}

}  // namespace

std::string planText(const CleanupPlan& plan, const std::vector<std::string>& leftOut,
                     const Wording& wording) {
  Table table{1};
  for (const CleanupStep& step : plan.steps) {
    const std::string path = printable(Paths::display(step.path, wording.home));
    table.add({ByteFormat::string(step.size, wording.locale), i18n(verb(step.kind)),
               step.runsCommand() ? i18n("{command}  for {path}",
                                         {{"command", printable(commandText(step.command))}, {"path", path}})
                                  : path});
    for (const auto& part : step.parts) {
      table.add({ByteFormat::string(part.size, wording.locale), "", "  " + printable(part.name)});
    }
  }
  std::string text = plan.title + '\n' + table.text();
  if (!plan.warning.empty()) text += printable(plan.warning) + '\n';
  for (const std::string_view line : lines(plan.note)) text += printable(line) + '\n';
  for (const std::string& line : leftOut)
    text += i18n("Left out: {item}", {{"item", printable(line)}}) + '\n';
  return text;
}

Json planJson(const CleanupPlan& plan) {
  Json object{{"steps", Json::array()}};
  for (const CleanupStep& step : plan.steps) object["steps"].push_back(stepJson(step));
  return object;
}

std::string resultText(const CleanupPlan& plan, const CleanupReport& report, const Wording& wording) {
  std::vector<CleanupText::Success> done;
  for (std::size_t i = 0; i < report.steps.size(); ++i) {
    if (report.steps[i].failure) continue;
    const std::string& label = plan.steps[i].label;
    if (done.empty() || done.back().label != label) done.push_back({.label = label});
    done.back().removed.bytes = saturatingAdd(done.back().removed.bytes, report.steps[i].removed.bytes);
  }
  // With several steps, the free space does not show how much each step freed.
  if (done.size() == 1) done.front().freed = report.freed();
  std::string text;
  for (const auto& each : done) text += printable(CleanupText::successText(each, wording.locale)) + '\n';
  if (report.freed().value_or(0) != 0) {
    text += FindingText::freeChange(*report.freeBefore, *report.freeAfter, wording.locale) + '\n';
  }
  return text;
}

Json resultJson(const CleanupPlan& plan, const CleanupReport& report) {
  Json object{{"steps", Json::array()}};
  for (std::size_t i = 0; i < plan.steps.size(); ++i) {
    const bool begun = i < report.steps.size();
    const CleanupReport::Step result = begun ? report.steps[i] : CleanupReport::Step{};
    Json step = stepJson(plan.steps[i]);
    step["done"] = begun && !result.failure;
    step["failure"] = failureJson(result.failure);
    step["removed"] = {{"items", result.removed.items}, {"bytes", result.removed.bytes}};
    object["steps"].push_back(std::move(step));
  }
  object["freed"] = report.freed() ? Json(*report.freed()) : Json(nullptr);
  object["free"] = report.freeAfter ? Json(*report.freeAfter) : Json(nullptr);
  return object;
}

}  // namespace spacemint::ctl
