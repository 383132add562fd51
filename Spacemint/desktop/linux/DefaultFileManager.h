#pragma once

#include <QObject>

#include <functional>
#include <string>

namespace spacemint {

/// Calls `found`, later, with the name of the program that opens folders, in the user's language. Does not
/// call it where the desktop names no such program, or after `context` is destroyed. Asks xdg-mime. Main
/// thread only; never blocks.
void findDefaultFileManager(QObject* context, std::function<void(const std::string& name)> found);

}  // namespace spacemint
