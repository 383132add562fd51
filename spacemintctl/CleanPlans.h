#pragma once

#include "core/base/Error.h"
#include "core/cleanup/DeletionGuard.h"
#include "spacemintctl/Answer.h"
#include "spacemintctl/CleanPlan.h"

#include <expected>
#include <string>
#include <vector>

namespace spacemint {
class Shell;
}

namespace spacemint::ctl {

/// What plans are made from.
struct CleanContext {
  const DeletionGuard& guard;
  const Shell& shell;
  const Wording& wording;
};

/// A relative path of the command line as an absolute one without ".."; an absolute one as it is.
std::string absolutePath(const std::string& path);

/// Deletes one file or folder of the home folder.
std::expected<CleanPlan, Error> planPath(const std::string& path, const CleanContext& context);

/// Deletes a device's backup that the newest scan knows.
std::expected<CleanPlan, Error> planBackup(const std::string& path, const CleanContext& context);

/// Removes a git worktree, by git where its repository knows it.
std::expected<CleanPlan, Error> planWorktree(const std::string& path, const CleanContext& context);

/// Empties the user's Trash.
std::expected<CleanPlan, Error> planTrash(const CleanContext& context);

/// Cleans the caches of these ids, or all large ones, that the newest scan knows.
std::expected<CleanPlan, Error> planCaches(const std::vector<std::string>& ids, const CleanContext& context);

}  // namespace spacemint::ctl
