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

const std::string expected = "";

class ScreenReaderTest : public ShownTabs {
 protected:
  // A line for each visible control below: role, name, description or value in brackets, and state.
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
    if (const auto* value = control.valueInterface()) {
      line += " " + std::to_string(static_cast<int>(value->currentValue().toDouble() * 100)) + "%";
    }
    if (state.checkable) line += state.checked ? ", checked" : ", not checked";
    if (state.selected) line += ", selected";
    if (state.disabled) line += ", disabled";
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
  model->confirmDelete(inHome("old.zip"), "old.zip", 30 * MB, "This removes it for good.");
  add("question");
  EXPECT_EQ(table, expected);
}

}  // namespace
}  // namespace spacemint
