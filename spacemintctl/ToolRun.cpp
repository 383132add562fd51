#include "spacemintctl/ToolRun.h"

namespace spacemint::ctl {

std::optional<DevTools::ToolAnswer> runTool(const Shell& shell, Shell::Run run) {
  auto output = shell.run(std::move(run)).get();
  if (!output) return std::nullopt;
  return DevTools::ToolAnswer{.status = output->status,
                              .output = std::move(output->output),
                              .error = std::move(output->error),
                              .timedOut = output->timedOut};
}

}  // namespace spacemint::ctl
