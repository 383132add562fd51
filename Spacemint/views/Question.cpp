#include "Spacemint/views/Question.h"

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

QString Question::note() const {
  return ShownText::withQuotes(text(&CleanupPlan::note));
}

QString Question::text(std::string CleanupPlan::*field) const {
  return isAsked() ? ShownText::sentence(current()->plan.*field) : QString{};
}

}  // namespace spacemint
