#pragma once

#include <QColor>
#include <QImage>
#include <QList>
#include <QString>

namespace spacemint {

/// What the item of the status area draws, in the sizes that status areas have. Main thread only, with a
/// QGuiApplication.
namespace StatusIcon {

/// The logo in one colour.
QList<QImage> logo(const QColor& colour);

/// The figure in place of the logo, for status areas that show nothing beside an icon: "17.3" over "GB".
QList<QImage> figure(const QString& text, const QColor& colour);

}  // namespace StatusIcon

}  // namespace spacemint
