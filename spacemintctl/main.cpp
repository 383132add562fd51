#include "spacemintctl/Console.h"
#include "spacemintctl/ScanCommand.h"
#include "spacemintctl/StatusCommand.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <exception>
#include <functional>

namespace {

using namespace spacemint::ctl;
using Action = std::function<int()>;

// The message of an argument that is no count of bytes; empty for one that is.
std::string wholeBytes(const std::string& text) {
  spacemint::Bytes bytes = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), bytes);
  const bool fits = error == std::errc{} && end == text.data() + text.size() && bytes >= 0;
  return fits ? "" : "\"" + text + "\" is not a whole number of bytes";
}

void addScan(CLI::App& app, Action& action) {
  static ScanOptions options;
  CLI::App* scan = app.add_subcommand("scan", "Measure a folder and say what is big in it");
  scan->add_option("PATH", options.path, "The folder; your home folder if none is given");
  scan->add_option("--min-size", options.minSize, "Keep files and folders of at least this many bytes apart")
      ->check(CLI::Validator(wholeBytes, "BYTES"))
      ->type_name("")
      ->capture_default_str();
  scan->add_option("--top", options.top, "How many folders and files to name")->type_name("N")->capture_default_str();
  scan->add_flag("--throttle", options.throttle, "Leave the disk to everybody else; slower");
  scan->add_flag("--no-save", options.noSave, "Do not keep this scan in the history");
  scan->add_flag("-q,--quiet", options.quiet, "No progress and no notes");
  scan->add_flag("--json", options.json, "Print the whole scan as one JSON object");
  scan->callback([&] { action = [] { return runScan(options); }; });
}

void addStatus(CLI::App& app, Action& action) {
  static bool json = false;
  CLI::App* status = app.add_subcommand("status", "Say how full the disk is");
  status->add_flag("--json", json, "Print one JSON object");
  status->callback([&] { action = [] { return runStatus(json); }; });
}

int run(int argc, char** argv) {
  CLI::App app{"Spacemint: what is big on your disk, what grew, and what is safe to clean", "spacemintctl"};
  app.require_subcommand(1);
  app.set_version_flag("--version", SPACEMINT_VERSION);
  Action action;
  addScan(app, action);
  addStatus(app, action);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& problem) {
    return app.exit(problem) == 0 ? done : wrongUsage;
  }
  return action();
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const std::exception& problem) {
    complain(problem.what());
    return failed;
  }
}
