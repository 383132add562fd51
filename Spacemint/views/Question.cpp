#include "Spacemint/views/Question.h"

#include "core/cleanup/CleanupText.h"

namespace spacemint {

Question::Question(const UiHost& host) : host_(host) {
  connect(&host_.model.cleanups(), &Cleanups::confirmationChanged, this, &Question::changed);
}

QString Question::detail() const {
  return isAsked() ? ShownText::sentence(current()->plan.detail.value_or("")) : QString{};
}

QStringList Question::items() const {
  QStringList shown;
  if (!isAsked()) return shown;
  for (const std::string& item : current()->plan.items) shown << ShownText::sentence(item);
  return shown;
}

// What is lost with a worktree besides what was asked for; its note begins with it.
std::string Question::loss() const {
  if (!isAsked() || current()->plan.steps.size() != 1) return "";
  return CleanupText::worktreeWarning(current()->plan.steps.front().worktree);
}

QString Question::note() const {
  if (!isAsked()) return {};
  const std::string loss = this->loss();
  std::string_view note = current()->plan.note;
  if (note.starts_with(loss)) note.remove_prefix(loss.size());
  return ShownText::withQuotes(ShownText::sentence(note).trimmed());
}

QString Question::text(std::string CleanupPlan::*field) const {
  return isAsked() ? ShownText::sentence(current()->plan.*field) : QString{};
}

}  // namespace spacemint
