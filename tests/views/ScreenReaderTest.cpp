// What a screen reader says about every control, page by page.

#include "views/ShownTabs.h"

#include <QAccessible>

#include <map>

namespace spacemint {
namespace {

using namespace support;

const std::map<QAccessible::Role, std::string> controlRoles{
    {QAccessible::Button, "button"},        {QAccessible::CheckBox, "check box"},
    {QAccessible::ComboBox, "combo box"},   {QAccessible::RadioButton, "radio button"},
    {QAccessible::PageTab, "tab"},          {QAccessible::ListItem, "list item"},
    {QAccessible::ProgressBar, "progress"}, {QAccessible::Heading, "heading"},
    {QAccessible::AlertMessage, "alert"},   {QAccessible::Dialog, "dialog"}};

const std::string expected = R"(== welcome
button: Settings
heading: Never be surprised by a full disk again.
button: Open Privacy Settings
button: Start first scan
== overview
button: Settings
progress: 100 GB free of 500 GB (Warning below 20 GB free)
tab: Overview, selected
tab: Folders
tab: Large files
tab: Developer
heading: What changed
combo box: Compared with the scan of (1 hour ago · 7:00 AM)
heading: Where to free up space
button: Empty Trash
button: Show contents
button: Developer caches, 2 GB (Package and model caches in ~/.cache), not checked
button: Downloads, 922 MB (Installers and archives pile up here), not checked
button: Scan now
== folders
button: Settings
progress: 100 GB free of 500 GB (Warning below 20 GB free)
tab: Overview
tab: Folders, selected
tab: Large files
tab: Developer
heading: Home folder
button: Show in Finder
list item: .cache, 2 GB
list item: .Trash, 1.2 GB
list item: Downloads, 922 MB
list item: new, 512 MB
button: Scan now
== files
button: Settings
progress: 100 GB free of 500 GB (Warning below 20 GB free)
tab: Overview
tab: Folders
tab: Large files, selected
tab: Developer
heading: Largest files
list item: wheel, 2 GB (~/.cache/pip)
list item: film, 1.2 GB (~/.Trash)
list item: film.iso, 922 MB (~/Downloads)
list item: data, 512 MB (~/new)
button: Scan now
== developer
button: Settings
progress: 100 GB free of 500 GB (Warning below 20 GB free)
tab: Overview
tab: Folders
tab: Large files
tab: Developer, selected
heading: Leftover caches and build files
list item: pip cache, 2 GB (Downloaded again on demand)
button: Clean up (pip cache)
heading: Unused Docker data
list item: Unused images, 1.1 GB (3 of 12 in use)
list item: Stopped containers, 230 MB (1 of 4 in use)
list item: Local Volumes, 6.5 GB (2 of 5 in use)
button: Remove (Local Volumes)
list item: Unused build cache, 2.4 GB (0 of 87 in use)
button: Clean up (Removes stopped containers, unused images and build cache. Keeps volumes.)
heading: Stale Git worktrees
button: Show 1 active worktree
button: Scan now
== settings
button: Back
heading: Settings
heading: Warning
combo box: Warn me below (20 GB free)
button: Send test
heading: Background scan
combo box: Scan (Home folder)
combo box: How often (Every 6 hours)
heading: General
radio button: Menu bar, checked
radio button: Dock, not checked
check box: Show free space in the menu bar, checked
check box: Open at login, not checked
button: About
button: Quit Spacemint
== question
button: Back
heading: Settings
heading: Warning
combo box: Warn me below (20 GB free)
button: Send test
heading: Background scan
combo box: Scan (Home folder)
combo box: How often (Every 6 hours)
heading: General
radio button: Menu bar, checked
radio button: Dock, not checked
check box: Show free space in the menu bar, checked
check box: Open at login, not checked
button: About
button: Quit Spacemint
dialog: Delete permanently?
button: Cancel
button: Delete
)";

class ScreenReaderTest : public ShownTabs {
 protected:
  // A line for each visible control: its role, its name, its value or description in brackets, and its state.
  void collect(QAccessibleInterface* from, std::vector<std::string>& lines) {
    if (from->state().invisible) return;
    const auto role = controlRoles.find(from->role());
    if (role != controlRoles.end()) lines.push_back(role->second + ": " + describe(*from));
    for (int i = 0; i < from->childCount(); ++i) collect(from->child(i), lines);
  }

  static std::string describe(QAccessibleInterface& control) {
    const auto text = [&](QAccessible::Text kind) {
      return control.text(kind).replace(QChar::Nbsp, u' ').toStdString();
    };
    const QAccessible::State state = control.state();
    std::string line = text(QAccessible::Name);
    EXPECT_NE(line, "");
    if (const std::string more = text(QAccessible::Description); !more.empty()) line += " (" + more + ")";
    if (state.checkable) line += state.checked ? ", checked" : ", not checked";
    if (state.selected) line += ", selected";
    return line;
  }

  std::string all() {
    std::vector<std::string> lines;
    collect(QAccessible::queryAccessibleInterface(&view->window()), lines);
    std::string text;
    for (const std::string& line : lines) text += line + "\n";
    return text;
  }
};

TEST_F(ScreenReaderTest, everyControlHasARoleANameAValueAndAState) {
  std::string table;
  const auto add = [&](const char* page) {
    settle();
    table += "== " + std::string{page} + "\n" + all();
  };
  hasAccess = false;
  show();
  add("welcome");
  view.reset();

  hasAccess = true;
  addFile(".Trash/film", 1'200 * MB);
  addProgram("docker", prints(dockerUsage()));
  addWorktree("new", morning - std::chrono::days{2});
  storeGrowth(1);
  storeHome(morning - 30min, {support::folder(".Trash", {file("film", 1'200 * MB)}),
                              support::folder("Downloads", {file("film.iso", 900 * MB)}),
                              worktreeTree("new", 500 * MB), nested(".cache/pip", {file("wheel", 2 * GB)})});
  show(Tab::overview, {460, 1000});
  add("overview");
  model->setTab(Tab::folders);
  add("folders");
  model->setTab(Tab::files);
  add("files");
  model->setTab(Tab::developer);
  add("developer");
  model->setShowingSettings(true);
  add("settings");
  model->cleanups().ask(DeleteRequest{inHome("old.zip"), "old.zip", 30 * MB, "This removes it for good."});
  add("question");
  EXPECT_EQ(table, expected);
}

}  // namespace
}  // namespace spacemint
