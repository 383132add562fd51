#include "spacemintctl/CleanSteps.h"

#include "Spacemint/command/Shell.h"
#include "core/cleanup/Cleanup.h"
#include "core/host/AllocatedSize.h"
#include "core/scan/DiskScanner.h"

#include <algorithm>
#include <filesystem>

namespace spacemint::ctl {

namespace {

// Smaller ones are not told apart.
constexpr Bytes partMinimum = 1'000'000;
constexpr std::size_t partLimit = 10;

Bytes measured(const std::string& path) {
  if (const auto folder = DiskScanner::scan({.root = path, .minNodeSize = partMinimum}))
    return folder->root.size;
  return allocatedSize(path).value_or(0);
}

}  // namespace

Error cleanError(std::string message) {
  return {.domain = "clean", .message = std::move(message)};
}

std::expected<void, Error> admitted(const std::optional<CleanupFailure>& refusal) {
  if (!refusal) return {};
  return std::unexpected(cleanError(refusal->message));
}

std::expected<CleanStep, Error> deleteStep(const std::string& path, const CleanContext& context) {
  const auto allowed = admitted(Cleanup::refusal(context.guard, {.path = path}));
  if (!allowed) return std::unexpected(allowed.error());
  const auto identity = fileIdentity(path);
  if (!identity) return std::unexpected(identity.error());
  return CleanStep{.kind = CleanStep::Kind::deleteItem,
                   .path = path,
                   .size = measured(path),
                   .identity = *identity,
                   .label = "Deleted " + Paths::lastComponent(path)};
}

std::expected<CleanStep, Error> emptyStep(CleanStep::Kind kind, const std::string& path) {
  const auto identity = fileIdentity(path);
  if (!identity) return std::unexpected(identity.error());
  const auto folder = DiskScanner::scan({.root = path, .minNodeSize = partMinimum});
  if (!folder) return std::unexpected(cleanError(path + ": cannot be read as a folder"));
  CleanStep step{.kind = kind, .path = path, .size = folder->root.size, .identity = *identity};
  for (const Node& child : folder->root.children) {
    if (step.parts.size() < partLimit) step.parts.push_back({child.name, child.size});
  }
  return step;
}

CleanStep commandStep(const std::string& program, std::vector<std::string> arguments,
                      const CleanContext& context) {
  return {.kind = CleanStep::Kind::runCommand,
          .program = context.shell.which(program).value_or(program),
          .arguments = std::move(arguments)};
}

}  // namespace spacemint::ctl
