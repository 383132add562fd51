#pragma once

#include <QString>

namespace spacemint {

/// Activation tokens of Wayland. A compositor gives the keyboard focus only to a window with a token, which
/// proves that the user did something for it: a click on the status item, or a start from a menu. Main thread
/// only.
namespace ActivationToken {

/// The token with which a launcher started this process; empty without one.
QString ofThisProcess();

/// The next window that asks for the focus uses this token. Does nothing with an empty token, or on X11,
/// which has no tokens.
void use(const QString& token);

}  // namespace ActivationToken

}  // namespace spacemint
