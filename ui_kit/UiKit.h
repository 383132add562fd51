#pragma once

class QQmlEngine;

namespace spacemint {

class Theme;

/// Sets up the kit in a program. Main thread only, with a QGuiApplication.
namespace UiKit {

/// Adds the import path, the fonts and the symbols to an engine. Call it before the engine loads a file.
void install(QQmlEngine& engine);

/// The singleton `Theme` of an engine; it lives as long as the engine. Call install() first.
Theme& theme(QQmlEngine& engine);

}  // namespace UiKit

}  // namespace spacemint
