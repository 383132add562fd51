#pragma once

#include "ui_kit/Colours.h"

#include <QColor>
#include <QFont>
#include <QQmlEngine>

namespace spacemint {

/// A colour of the table as a property that changes with the appearance.
#define SPACEMINT_THEME_COLOUR(name)                     \
  Q_PROPERTY(QColor name READ name NOTIFY isDarkChanged) \
 public:                                                 \
  QColor name() const {                                  \
    return resolve(colourNamed(#name));                  \
  }

/// What the interface looks like: its colours, and what the desktop asks of it. QML sees it through the
/// singleton `Theme`, which adds the fonts and transitions that follow from it; C++ gets that singleton from
/// UiKit::theme(). Main thread only.
class Theme : public QObject {
  Q_OBJECT
  QML_NAMED_ELEMENT(ThemeBase)
  /// Whether the desktop wants light text on a dark ground.
  Q_PROPERTY(bool isDark READ isDark WRITE setDark NOTIFY isDarkChanged)
  /// How much larger than designed all text is.
  Q_PROPERTY(qreal textScale READ textScale WRITE setTextScale NOTIFY textScaleChanged)
  /// Whether the desktop wants no movement.
  Q_PROPERTY(bool reducedMotion READ reducedMotion WRITE setReducedMotion NOTIFY reducedMotionChanged)
  Q_PROPERTY(QString sansFamily READ sansFamily CONSTANT)
  Q_PROPERTY(QString serifFamily READ serifFamily CONSTANT)

  SPACEMINT_THEME_COLOUR(chrome)
  SPACEMINT_THEME_COLOUR(canvas)
  SPACEMINT_THEME_COLOUR(card)
  SPACEMINT_THEME_COLOUR(well)
  SPACEMINT_THEME_COLOUR(border)
  SPACEMINT_THEME_COLOUR(ink)
  SPACEMINT_THEME_COLOUR(secondary)
  SPACEMINT_THEME_COLOUR(tertiary)
  SPACEMINT_THEME_COLOUR(hover)
  SPACEMINT_THEME_COLOUR(selected)
  SPACEMINT_THEME_COLOUR(button)
  SPACEMINT_THEME_COLOUR(lavender)
  SPACEMINT_THEME_COLOUR(lavenderBorder)
  SPACEMINT_THEME_COLOUR(lavenderInk)
  SPACEMINT_THEME_COLOUR(amber)
  SPACEMINT_THEME_COLOUR(amberSoft)
  SPACEMINT_THEME_COLOUR(amberInk)
  SPACEMINT_THEME_COLOUR(teal)
  SPACEMINT_THEME_COLOUR(tealSoft)
  SPACEMINT_THEME_COLOUR(critical)
  SPACEMINT_THEME_COLOUR(criticalSoft)
  SPACEMINT_THEME_COLOUR(warning)
  SPACEMINT_THEME_COLOUR(warningFill)
  SPACEMINT_THEME_COLOUR(warningBorder)
  SPACEMINT_THEME_COLOUR(track)

 public:
  explicit Theme(QObject* parent = nullptr);

  bool isDark() const { return isDark_; }
  void setDark(bool isDark);

  qreal textScale() const { return textScale_; }
  /// Kept between 1 and 2.
  void setTextScale(qreal scale);
  /// The scale at which text is as large as that font, of which the desktop says that it is the right size.
  static qreal textScaleOf(const QFont& desktopFont);

  bool reducedMotion() const { return reducedMotion_; }
  void setReducedMotion(bool isReduced);

  QString sansFamily() const { return sansFamily_; }
  QString serifFamily() const { return serifFamily_; }

 Q_SIGNALS:
  void isDarkChanged();
  void textScaleChanged();
  void reducedMotionChanged();

 private:
  QColor resolve(const Colour& colour) const { return QColor::fromRgb(isDark_ ? colour.dark : colour.light); }

  bool isDark_ = false;
  qreal textScale_ = 1;
  bool reducedMotion_ = false;
  QString sansFamily_;
  QString serifFamily_;
};

#undef SPACEMINT_THEME_COLOUR

}  // namespace spacemint
