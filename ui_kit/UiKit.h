#pragma once

class QQmlEngine;

namespace spacemint {

class Theme;

/// What a program does to show the kit. Main thread only, with a QGuiApplication.
namespace UiKit {

/// Makes the kit ready for an engine: import path, fonts and symbols. Comes before the engine loads anything.
void install(QQmlEngine& engine);

/// The theme that the QML of an engine sees; lives as long as the engine. After install().
Theme& theme(QQmlEngine& engine);

}  // namespace UiKit

}  // namespace spacemint
