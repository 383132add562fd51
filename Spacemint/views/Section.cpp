#include "Spacemint/views/Section.h"

#include <tuple>

namespace spacemint {

void Section::assign(State state) {
  rows_.assign(std::move(state.rows));
  const auto before = std::tuple{text_, isWaiting_, isShown_};
  text_ = QString::fromStdString(state.text);
  isWaiting_ = state.isWaiting;
  isShown_ = state.isShown;
  if (before != std::tie(text_, isWaiting_, isShown_)) Q_EMIT changed();
}

}  // namespace spacemint
