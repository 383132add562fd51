#include "spacemintctl/CleanText.h"

#include "core/base/ByteFormat.h"

#include <utility>

namespace spacemint::ctl {

namespace {

// A word that a shell reads as it is, or in quotes.
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

const char* verb(CleanStep::Kind kind) {
  constexpr const char* verbs[] = {"delete", "empty", "empty", "run"};
  return verbs[std::to_underlying(kind)];
}

}  // namespace

std::string commandText(const CleanStep& step) {
  std::string text = quoted(step.program);
  for (const std::string& argument : step.arguments) text += " " + quoted(argument);
  return text;
}

std::string planText(const CleanPlan& plan, const Wording& wording) {
  Table table{1};
  for (const CleanStep& step : plan.steps) {
    const std::string path = printable(Paths::display(step.path, wording.home));
    const bool runs = step.kind == CleanStep::Kind::runCommand;
    table.add({ByteFormat::string(step.size, wording.locale), verb(step.kind),
               runs ? printable(commandText(step)) + "  for " + path : path});
    for (const auto& part : step.parts) {
      table.add({ByteFormat::string(part.size, wording.locale), "", "  " + printable(part.name)});
    }
  }
  std::string text = plan.question + '\n' + table.text();
  for (const std::string& note : plan.notes) text += printable(note) + '\n';
  for (const std::string& line : plan.leftOut) text += "Left out: " + printable(line) + '\n';
  return text;
}

Json stepJson(const CleanStep& step) {
  Json object{{"action", verb(step.kind)}, {"path", jsonText(step.path)}, {"size", step.size}};
  if (step.kind == CleanStep::Kind::runCommand) {
    object["command"] = Json::array({jsonText(step.program)});
    for (const std::string& argument : step.arguments) object["command"].push_back(jsonText(argument));
  }
  return object;
}

Json planJson(const CleanPlan& plan) {
  Json object{{"steps", Json::array()}};
  for (const CleanStep& step : plan.steps) object["steps"].push_back(stepJson(step));
  return object;
}

Json failureJson(const std::optional<CleanupFailure>& failure) {
  if (!failure) return nullptr;
  constexpr const char* kinds[] = {"refused", "other", "needsFullDiskAccess", "needsFinderPermission"};
  return {{"kind", kinds[std::to_underlying(failure->kind)]}, {"message", jsonText(failure->message)}};
}

}  // namespace spacemint::ctl
