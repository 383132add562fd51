#pragma once

#include "core/base/Bytes.h"
#include "core/host/Removal.h"

#include <string>
#include <vector>

namespace spacemint::ctl {

/// One thing that a clean-up will do.
struct CleanStep {
  enum class Kind { deleteItem, emptyCache, emptyTrash, runCommand };

  /// Something large in the folder that will be emptied.
  struct Part {
    std::string name;
    Bytes size = 0;
  };

  Kind kind = Kind::deleteItem;
  /// What is deleted or emptied, or what the command is about.
  std::string path;
  /// What it takes now.
  Bytes size = 0;
  /// The item as it was when the plan was made; another one in its place is left alone.
  FileIdentity identity = {};
  std::vector<Part> parts = {};
  /// Of a command: the program's full path, or its bare name where it was not found.
  std::string program = {};
  std::vector<std::string> arguments = {};
  /// What was done, when it is done: "Deleted old.zip".
  std::string label = {};
};

/// Everything that a clean-up will do, as data: it is shown, confirmed and carried out, and in between it
/// does not change.
struct CleanPlan {
  std::string question;
  /// What will happen, a line each.
  std::vector<std::string> notes;
  std::vector<CleanStep> steps = {};
  /// The paths to measure again in the stored scan.
  std::vector<std::string> touched = {};
  /// Why something that might be expected here is not, a line each.
  std::vector<std::string> leftOut = {};
  bool isTrash = false;
  /// What to say when there is nothing to do.
  std::string nothingToDo = {};
};

}  // namespace spacemint::ctl
