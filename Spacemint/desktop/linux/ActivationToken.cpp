#include "Spacemint/desktop/linux/ActivationToken.h"

#include "Spacemint/desktop/linux/Wayland.h"

namespace spacemint {

namespace {

// Qt's Wayland plugin reads the variable at the next QWindow::requestActivate, and removes it.
constexpr const char* variable = "XDG_ACTIVATION_TOKEN";

}  // namespace

QString ActivationToken::ofThisProcess() {
  return qEnvironmentVariable(variable);
}

void ActivationToken::use(const QString& token) {
  if (token.isEmpty() || !isOnWayland()) return;
  qputenv(variable, token.toUtf8());
}

}  // namespace spacemint
