#include "Spacemint/views/Question.h"

#include "Spacemint/views/ShownText.h"

namespace spacemint {

Question::Question(const UiHost& host) : host_(host) {
  connect(&host_.model.confirmations(), &Confirmations::changed, this, &Question::changed);
}

QString Question::detail() const {
  return isAsked() ? ShownText::sentence(current()->detail.value_or("")) : QString{};
}

QString Question::text(std::string Confirmation::*field) const {
  return isAsked() ? ShownText::sentence((*current()).*field) : QString{};
}

}  // namespace spacemint
