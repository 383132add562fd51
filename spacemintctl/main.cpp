#include "core/base/Translation.h"
#include "core/history/Migration.h"
#include "core/host/InstalledFolder.h"
#include "spacemintctl/CleanCommand.h"
#include "spacemintctl/Console.h"
#include "spacemintctl/ExplainCommand.h"
#include "spacemintctl/FindCommand.h"
#include "spacemintctl/HistoryCommand.h"
#include "spacemintctl/ListCommands.h"
#include "spacemintctl/ScanCommand.h"
#include "spacemintctl/SectionCommands.h"
#include "spacemintctl/SettingsCommand.h"
#include "spacemintctl/StatusCommand.h"
#include "spacemintctl/TopCommand.h"
#include "spacemintctl/TransferCommands.h"
#include "spacemintctl/UsageCommand.h"
#include "spacemintctl/WatchCommand.h"
#include "spacemintctl/browse/BrowseCommand.h"
#include "spacemintctl/browse/Cells.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <charconv>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace spacemint;
using namespace spacemint::ctl;
using Action = std::function<int()>;

// Returns an error message for a text that is not a whole number of 0 or more.
const CLI::Validator wholeNumber{
    [](const std::string& text) -> std::string {
      std::int64_t number = 0;
      const char* end = text.data() + text.size();
      const auto [read, error] = std::from_chars(text.data(), end, number);
      if (error == std::errc{} && read == end && number >= 0) return "";
      return i18n("\"{text}\" is not a whole number of 0 or more", {{"text", text}});
    },
    ""};

void addScan(CLI::App& app, Action& action) {
  static ScanOptions options;
  CLI::App* scan = app.add_subcommand("scan", i18n("Measure a folder and show what is big in it"));
  scan->add_option("PATH", options.path, i18n("The folder; your home folder by default"));
  scan->add_option("--min-size", options.minSize, i18n("Store files and folders from this size on, in bytes"))
      ->check(wholeNumber)
      ->type_name("BYTES")
      ->capture_default_str();
  scan->add_option("--top", options.top, i18n("How many folders and files to show"))
      ->check(wholeNumber)
      ->type_name("N")
      ->capture_default_str();
  scan->add_flag("--throttle", options.throttle, i18n("Let all other programs use the disk first; slower"));
  scan->add_flag("--full", options.full, i18n("Scan all folders, also those unchanged since the last scan"));
  scan->add_option(
          "--exclude", options.excludes,
          i18n("Leave out what PATTERN names, besides the setting \"excludes\"; may be given several times"))
      ->type_name("PATTERN")
      ->expected(1)
      ->take_all();
  scan->add_flag("--no-save", options.noSave, i18n("Do not store this scan in the history"));
  scan->add_flag("-q,--quiet", options.quiet, i18n("Show no progress and no notes"));
  CLI::Option* json = scan->add_flag("--json", options.json, i18n("Print the whole scan as one JSON object"));
  scan->add_option("--export", options.exportTo,
                   i18n("Write the scan to FILE for ncdu and \"import\" (\"-\": print it)"))
      ->type_name("FILE")
      ->excludes(json);
  scan->callback([&] { action = [] { return runScan(options); }; });
}

void addStatus(CLI::App& app, Action& action) {
  static StatusOptions options;
  CLI::App* status = app.add_subcommand("status", i18n("Show how full the disk is"));
  status->add_flag("--json", options.json, i18n("Print one JSON object"));
  status->add_flag("--verbose", options.verbose, i18n("Also show if the next scan is a full one, and why"));
  status->add_flag("--history", options.history, i18n("Also show the free space of the last 14 days"));
  status->callback([&] { action = [] { return runStatus(options); }; });
}

void addExplain(CLI::App& app, Action& action) {
  static ExplainOptions options;
  CLI::App* explain =
      app.add_subcommand("explain", i18n("Show where all the space of a volume is, as a sum"));
  explain->add_option("PATH", options.path, i18n("Any path on the volume; your home folder by default"));
  explain->add_flag("--fresh", options.fresh,
                    i18n("Measure the volume now, in place of the newest stored scan"));
  explain->add_flag("--json", options.json, i18n("Print one JSON object"));
  explain->callback([&] { action = [] { return runExplain(options); }; });
}

void addWatch(CLI::App& app, Action& action) {
  static std::string path;
  CLI::App* watch =
      app.add_subcommand("watch", i18n("Record which folders change, so that later scans visit only these"));
  watch->add_option("PATH", path, i18n("The folder that you scan; your home folder by default"));
  watch->callback([&] { action = [] { return runWatch(path); }; });
}

void addTopCommand(CLI::App& app, Action& action) {
  static TopOptions options;
  CLI::App* top = app.add_subcommand("top", i18n("Show what grows now, and how fast"));
  top->add_option("PATH", options.path, i18n("The folder; your home folder by default"));
  top->add_flag("--json", options.json, i18n("Print one JSON object at every refresh"));
  top->callback([&] { action = [] { return runTop(options); }; });
}

void addHistory(CLI::App& app, Action& action) {
  static bool json = false;
  CLI::App* history = app.add_subcommand("history", i18n("List the stored scans"));
  history->add_flag("--json", json, i18n("Print one JSON array"));
  history->callback([&] { action = [] { return runHistory(json); }; });
}

void addScanDate(CLI::App* command, std::string& date, const char* names = "--scan") {
  command->add_option(names, date, i18n("Use the scan whose date begins with DATE, not the newest"))
      ->type_name("DATE");
}

void addTop(CLI::App* command, std::size_t& top) {
  command->add_option("--top", top, i18n("How many to show"))
      ->check(wholeNumber)
      ->type_name("N")
      ->capture_default_str();
}

CLI::App* addList(CLI::App& app, const char* name, const std::string& description, ListOptions& options) {
  CLI::App* command = app.add_subcommand(name, description);
  addScanDate(command, options.scan);
  addTop(command, options.top);
  command->add_flag("--json", options.json, i18n("Print JSON"));
  return command;
}

void addFilesAndFolders(CLI::App& app, Action& action) {
  static ListOptions files;
  addList(app, "files", i18n("Show the largest files of the newest scan"), files)->callback([&] {
    action = [] { return runFiles(files); };
  });
  static ListOptions folders;
  CLI::App* command =
      addList(app, "folders", i18n("Show the contents of a folder in the newest scan"), folders);
  command->add_option("PATH", folders.path, i18n("The folder; the root of the scan by default"));
  command->add_flag("--by-count", folders.byCount, i18n("Sort by the number of files"));
  command->callback([&] { action = [] { return runFolders(folders); }; });
}

void addFind(CLI::App& app, Action& action) {
  static FindOptions find;
  CLI::App* command = addList(
      app, "find", i18n("Find files and folders of the newest scan by name, size, age or kind"), find);
  command
      ->add_option(
          "WORDS", find.words,
          i18n(
              "All must hold: part of the name, \"*.iso\", \">1GB\", \"<10MB\", older:1y, newer:2w (d, w, m, "
              "y), type:file, type:folder, or type: and a kind: video, pictures, music, archives, images, "
              "documents, code, packages, models, other"))
      ->required();
  command
      ->add_flag("--print0", find.print0,
                 i18n("Print all paths, each with a null byte behind it, for \"xargs -0\""))
      ->excludes("--json");
  command->callback([&] { action = [] { return runFind(find); }; });
  static ListOptions kinds;
  CLI::App* list = app.add_subcommand("kinds", i18n("Show which kinds of files fill the disk"));
  addScanDate(list, kinds.scan);
  list->add_flag("--json", kinds.json, i18n("Print JSON"));
  list->callback([&] { action = [] { return runKinds(kinds); }; });
}

void addTransfer(CLI::App& app, Action& action) {
  static ExportOptions out;
  static std::string format = "ncdu";
  CLI::App* command = app.add_subcommand("export", i18n("Write the newest scan for other programs"));
  addScanDate(command, out.scan);
  command->add_option("--format", format, i18n("The format"))
      ->check(CLI::IsMember({"ncdu"}))
      ->capture_default_str();
  command->add_option("FILE", out.file, i18n("The file; standard output by default"));
  command->callback([&] { action = [] { return runExport(out); }; });
  static ImportOptions in;
  CLI::App* incoming =
      app.add_subcommand("import", i18n("Show a scan that was exported, also on another computer"));
  incoming->add_option("FILE", in.file, i18n("The file; \"-\" reads standard input"))->required();
  addTop(incoming, in.top);
  incoming->add_flag("--json", in.json, i18n("Print the whole scan as one JSON object"));
  incoming->callback([&] { action = [] { return runImport(in); }; });
}

void addBrowse(CLI::App& app, Action& action) {
  static BrowseOptions options;
  CLI::App* browse = app.add_subcommand(
      "browse",
      i18n(
          "Walk through a folder on the full screen, and remove what you do not need; \"?\" shows the keys"));
  CLI::Option* path =
      browse->add_option("PATH", options.path, i18n("The folder; your home folder by default"));
  browse
      ->add_option(
          "-f,--import", options.importFile,
          i18n("Show a scan that was exported, also on another computer; \"-\" reads standard input"))
      ->type_name("FILE")
      ->excludes(path);
  browse->add_flag("-r,--read-only", options.readOnly, i18n("Remove nothing"));
  browse->add_flag("--allow-removal", options.allowRemoval, i18n("Let root remove files and folders"));
  browse->add_flag("--json", options.json,
                   i18n("Not here: \"folders --json\" and \"scan --json\" print JSON"));
  browse->callback([&] { action = [] { return runBrowse(options); }; });
}

CLI::App* addSectionOptions(CLI::App* command, SectionOptions& options, const char* scanNames = "--scan") {
  addScanDate(command, options.scan, scanNames);
  addTop(command, options.top);
  command->add_flag("--json", options.json, i18n("Print JSON"));
  return command;
}

void addSince(CLI::App* command, SectionOptions& options) {
  command
      ->add_option("--since", options.since,
                   i18n("Compare with this scan, not with the one nearest to a day earlier"))
      ->type_name("DATE");
}

void addSections(CLI::App& app, Action& action) {
  static std::deque<SectionOptions> options;
  for (const Section& section : sections()) {
    if (section.description == nullptr) continue;
    SectionOptions& own = options.emplace_back();
    const bool compares = section.find == growthFindings;
    CLI::App* command = addSectionOptions(app.add_subcommand(section.command, i18n(section.description)), own,
                                          compares ? "--until,--scan" : "--scan");
    if (compares) addSince(command, own);
    if (section.minimum) {
      own.minimum = section.minimum;
      command->add_option("--min-size", own.minimum, i18n("Show only results of at least this many bytes"))
          ->check(wholeNumber)
          ->type_name("BYTES")
          ->default_str(std::to_string(*section.minimum));
    }
    command->callback(
        [&action, &section, &own] { action = [&section, &own] { return runSection(section, own); }; });
  }
}

void addReport(CLI::App& app, Action& action) {
  static SectionOptions options;
  CLI::App* report =
      app.add_subcommand("report", i18n("Show on one page what grew, what is big, and what can be freed"));
  addSectionOptions(report, options);
  addSince(report, options);
  report
      ->add_option("--svg", options.svg, i18n("Write a picture of the scan to this file, and print nothing"))
      ->type_name("FILE");
  report->callback([&] { action = [] { return runReport(options); }; });
}

CLI::App* addClean(CLI::App* clean, CleanKind kind, const char* name, const std::string& description,
                   CleanOptions& options, Action& action) {
  CLI::App* command = clean->add_subcommand(name, description);
  command->add_flag("-y,--yes", options.yes, i18n("Do not ask"));
  command->add_flag("-n,--dry-run", options.dryRun, i18n("Only show what would be done"));
  command->add_flag("--json", options.json, i18n("Print one JSON object"));
  command->callback(
      [&action, &options, kind] { action = [&options, kind] { return runClean(kind, options); }; });
  return command;
}

void addCleaning(CLI::App& app, Action& action) {
  static CleanOptions options;
  CLI::App* clean =
      app.add_subcommand("clean", i18n("Free space: show what will be removed, ask, and delete it for good"));
  clean->require_subcommand(1);
  const auto add = [&](CleanKind kind, const char* name, const std::string& description) {
    return addClean(clean, kind, name, description, options, action);
  };
  add(CleanKind::caches, "caches", i18n("Clean package and build caches"))
      ->add_option("ID", options.ids,
                   i18n("The ids of caches in \"caches --json\"; all caches over 50 MB by default"));
  add(CleanKind::trash, "trash", i18n("Empty the Trash"));
  add(CleanKind::backup, "backup", i18n("Delete the backup of a phone or tablet"))
      ->add_option("PATH", options.path, i18n("The folder"))
      ->required();
  add(CleanKind::worktree, "worktree", i18n("Remove a git worktree"))
      ->add_option("PATH", options.path, i18n("The folder"))
      ->required();
  add(CleanKind::path, "path", i18n("Delete files or folders in your home folder"))
      ->add_option("PATH", options.paths, i18n("The files or folders"))
      ->required();
}

void addSettings(CLI::App& app, Action& action) {
  static bool json = false;
  static std::string key;
  static std::string value;
  CLI::App* list = app.add_subcommand("settings", i18n("Show or change the settings"));
  list->require_subcommand(0, 1);
  list->add_flag("--json", json, i18n("Print one JSON object"));
  CLI::App* get = list->add_subcommand("get", i18n("Show one setting"));
  get->add_option("KEY", key, i18n("The key of the setting"))->required();
  CLI::App* set = list->add_subcommand("set", i18n("Change a setting"));
  set->add_option("KEY", key, i18n("The key of the setting"))->required();
  set->add_option("VALUE", value, i18n("The new value"))->required();
  list->callback([&action, get, set] {
    if (get->parsed()) {
      action = [] { return getSetting(key); };
    } else if (set->parsed()) {
      action = [] { return setSetting(key, value); };
    } else {
      action = [] { return listSettings(json); };
    }
  });
}

void addUsage(CLI::App& app, Action& action) {
  static bool json = false;
  CLI::App* usage = app.add_subcommand("usage", i18n("Show or change whether anonymous usage is shared"));
  usage->require_subcommand(0, 1);
  usage->add_flag("--json", json, i18n("Print one JSON object"));
  CLI::App* status = usage->add_subcommand("status", i18n("Show whether anonymous usage is shared"));
  status->add_flag("--json", json, i18n("Print one JSON object"));
  CLI::App* on = usage->add_subcommand("on", i18n("Share anonymous usage"));
  CLI::App* off = usage->add_subcommand("off", i18n("Do not share it, and delete the data stored for it"));
  usage->callback([&action, on, off] {
    if (on->parsed() || off->parsed()) {
      action = [isAllowed = on->parsed()] { return setUsage(isAllowed); };
    } else {
      action = [] { return showUsage(json); };
    }
  });
}

// The words of the parser, and the names of arguments and values. The list of groups is that of all commands.
constexpr const char* parserWords[] = {
    i18nMark("Usage"),    i18nMark("Positionals"), i18nMark("Options"),     i18nMark("Subcommands"),
    i18nMark("OPTIONS"),  i18nMark("SUBCOMMAND"),  i18nMark("SUBCOMMANDS"), i18nMark("REQUIRED"),
    i18nMark("Excludes"), i18nMark("TEXT"),        i18nMark("TEXT ..."),    i18nMark("BYTES"),
    i18nMark("N"),        i18nMark("DATE"),        i18nMark("FILE"),        i18nMark("PATH"),
    i18nMark("PATTERN"),  i18nMark("WORDS"),       i18nMark("KEY"),         i18nMark("VALUE"),
};

// Pads by columns: a translated word has letters of several bytes, or of two columns.
class HelpInColumns final : public CLI::Formatter {
 public:
  std::string make_option_name(const CLI::Option* option, bool isPositional) const override {
    const std::string name = CLI::Formatter::make_option_name(option, isPositional);
    return isPositional ? get_label(name) : name;
  }
  std::string make_option_opts(const CLI::Option* option) const override {
    std::string text = CLI::Formatter::make_option_opts(option);
    for (const CLI::Option* other : option->get_excludes()) {
      const std::string name = other->get_name();
      if (other->get_positional() && text.ends_with(name))
        text.replace(text.size() - name.size(), name.size(), get_label(name));
    }
    return text;
  }
  std::string make_option(const CLI::Option* option, bool isPositional) const override {
    std::string line = "  " + make_option_name(option, isPositional) + make_option_opts(option);
    const std::size_t columns = columnsOf(line);
    const std::size_t width = get_column_width();
    line += columns + 1 < width ? std::string(width - columns, ' ') : '\n' + std::string(width, ' ');
    return line + make_option_desc(option) + '\n';
  }
};

// Before the commands are added, which inherit these texts.
void translateParser(CLI::App& app) {
  app.formatter(std::make_shared<HelpInColumns>());
  for (const char* word : parserWords) app.get_formatter()->label(word, i18n(word));
  app.option_defaults()->group(i18n("Options"));
  app.set_help_flag("-h,--help", i18n("Print this help message and exit"));
  app.set_version_flag("--version", SPACEMINT_VERSION, i18n("Display program version information and exit"));
}

void translateGroups(CLI::App& app) {
  for (CLI::App* command : app.get_subcommands({})) {
    command->group(i18n("Subcommands"));
    command->get_help_ptr()->group(i18n("Options"));
    translateGroups(*command);
  }
}

// The complaints of the parser, as it words them.
constexpr const char* parserProblems[] = {
    i18nMark("A subcommand is required"),
    i18nMark("The following argument was not expected: {what}"),
    i18nMark("The following arguments were not expected: {what}"),
    i18nMark("{what}: {value} required {more} missing"),
    i18nMark("{what}: {value} not in {more}"),
    i18nMark("{what} excludes {value}"),
    i18nMark("{what} is required"),
};

// What stands for the placeholders of the form, in their order, if the text has this form.
std::optional<std::array<std::string, 3>> valuesIn(std::string_view text, std::string_view form) {
  std::array<std::string, 3> values;
  for (std::size_t i = 0;; ++i) {
    const std::size_t open = std::min(form.find('{'), form.size());
    if (!text.starts_with(form.substr(0, open))) return {};
    text.remove_prefix(open);
    if (open == form.size()) return text.empty() ? std::optional{values} : std::nullopt;
    form.remove_prefix(form.find('}') + 1);
    const std::string_view behind = form.substr(0, form.find('{'));
    const std::size_t end = behind.empty() ? text.size() : text.find(behind);
    if (end == std::string_view::npos) return {};
    values.at(i) = text.substr(0, end);
    text.remove_prefix(end);
  }
}

std::string problemText(std::string_view problem) {
  for (const char* form : parserProblems) {
    auto values = valuesIn(problem, form);
    if (!values) continue;
    for (std::string& value : *values) {
      if (std::ranges::find(parserWords, value) != std::end(parserWords)) value = i18n(value.c_str());
    }
    return i18n(form, {{"what", (*values)[0]}, {"value", (*values)[1]}, {"more", (*values)[2]}});
  }
  return std::string{problem};
}

// Every program must do this before it reads settings or history.
void openUserData() {
  DefaultsStore settings = DefaultsStore::standard();
  for (const std::string& path : settings.setAside()) {
    complain(i18n("the settings file was damaged and was moved to {path}", {{"path", printable(path)}}));
  }
  const auto migrated = Migration::ofThisUser(settings);
  if (migrated.error) complain(printable(*migrated.error));
}

bool hasCommand(const CLI::App& app, const std::string& name) {
  return std::ranges::any_of(app.get_subcommands([](const CLI::App*) { return true; }),
                             [&](const CLI::App* command) { return command->get_name() == name; });
}

int run(int argc, char** argv) {
  CLI::App app{i18n("Spacemint: what is big on your disk, what grew, and what is safe to clean"),
               "spacemintctl"};
  app.require_subcommand(1);
  translateParser(app);
  app.failure_message([](const CLI::App*, const CLI::Error& problem) {
    return "spacemintctl: " + i18n("{problem} (see --help)", {{"problem", problemText(problem.what())}}) +
           '\n';
  });
  Action action;
  addScan(app, action);
  addWatch(app, action);
  addTopCommand(app, action);
  addHistory(app, action);
  addFilesAndFolders(app, action);
  addFind(app, action);
  addBrowse(app, action);
  addTransfer(app, action);
  addReport(app, action);
  addSections(app, action);
  addCleaning(app, action);
  addStatus(app, action);
  addExplain(app, action);
  addSettings(app, action);
  addUsage(app, action);
  translateGroups(app);
  std::vector<std::string> arguments(argv + 1, argv + argc);
  // "spacemintctl PATH"
  if (!arguments.empty() && !hasCommand(app, arguments.front()) && namesFolder(arguments.front()))
    arguments.insert(arguments.begin(), "browse");
  std::ranges::reverse(arguments);  // as the parser wants them
  try {
    app.parse(arguments);
  } catch (const CLI::ParseError& problem) {
    return app.exit(problem) == 0 ? done : wrongUsage;
  }
  openUserData();
  return action();
}

}  // namespace

int main(int argc, char** argv) {
  try {
    // JSON is read by programs: its texts are in English.
    const bool isForPrograms =
        std::any_of(argv, argv + argc, [](std::string_view word) { return word == "--json"; });
    if (!isForPrograms) setUpTranslation(InstalledFolder::translations(), ShownIn::terminal);
    return run(argc, argv);
  } catch (const std::exception& problem) {
    complain(problem.what());
    return failed;
  }
}
