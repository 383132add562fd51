#include "Spacemint/views/Question.h"

#include "Spacemint/views/ShownText.h"

namespace spacemint {

Question::Question(const UiHost& host) : host_(host) {
  connect(&host_.model.cleanups(), &Cleanups::confirmationChanged, this, &Question::changed);
}

QString Question::detail() const {
  return isAsked() ? ShownText::sentence(current()->plan.detail.value_or("")) : QString{};
}

QString Question::text(std::string CleanupPlan::*field) const {
  return isAsked() ? ShownText::sentence(current()->plan.*field) : QString{};
}

}  // namespace spacemint
