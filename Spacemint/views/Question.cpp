#include "Spacemint/views/Question.h"

namespace spacemint {

Question::Question(const UiHost& host) : host_(host) {
  connect(&host_.model.confirmations(), &Confirmations::changed, this, &Question::changed);
}

QString Question::detail() const {
  return isAsked() ? QString::fromStdString(current()->detail.value_or("")) : QString{};
}

QString Question::text(std::string Confirmation::*field) const {
  return isAsked() ? QString::fromStdString((*current()).*field) : QString{};
}

}  // namespace spacemint
