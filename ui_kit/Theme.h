#pragma once

#include "ui_kit/Colours.h"

#include <QColor>
#include <QFont>
#include <QQmlEngine>

namespace spacemint {

/// A colour of Colours.h as a property that changes with the appearance.
#define SPACEMINT_THEME_COLOUR(name)                     \
  Q_PROPERTY(QColor name READ name NOTIFY isDarkChanged) \
 public:                                                 \
  QColor name() const {                                  \
    return resolve(colourNamed(#name));                  \
  }

/// The colours of the interface and the settings of the desktop that change its look. QML uses the singleton
/// `Theme`, which adds fonts and transitions; C++ gets the singleton from UiKit::theme(). Main thread only.
class Theme : public QObject {
  Q_OBJECT
  QML_NAMED_ELEMENT(ThemeBase)
  /// Whether the desktop wants the dark appearance.
  Q_PROPERTY(bool isDark READ isDark WRITE setDark NOTIFY isDarkChanged)
  /// The factor by which all text is larger than designed.
  Q_PROPERTY(qreal textScale READ textScale WRITE setTextScale NOTIFY textScaleChanged)
  /// Whether the desktop wants no animations.
  Q_PROPERTY(bool reducedMotion READ reducedMotion WRITE setReducedMotion NOTIFY reducedMotionChanged)
  Q_PROPERTY(QString sansFamily READ sansFamily CONSTANT)

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
  // Of the pictures of folders: what is there, the folder around it, what came, and what shrank; then the
  // ages, newest first.
  SPACEMINT_THEME_COLOUR(block)
  SPACEMINT_THEME_COLOUR(frame)
  SPACEMINT_THEME_COLOUR(grown)
  SPACEMINT_THEME_COLOUR(shrunk)
  SPACEMINT_THEME_COLOUR(age1)
  SPACEMINT_THEME_COLOUR(age2)
  SPACEMINT_THEME_COLOUR(age3)
  SPACEMINT_THEME_COLOUR(age4)

 public:
  explicit Theme(QObject* parent = nullptr);

  bool isDark() const { return isDark_; }
  void setDark(bool isDark);

  qreal textScale() const { return textScale_; }
  /// Clamps the scale to 1 to 2.
  void setTextScale(qreal scale);
  /// The text scale that matches the size of the desktop's font.
  static qreal textScaleOf(const QFont& desktopFont);

  bool reducedMotion() const { return reducedMotion_; }
  void setReducedMotion(bool isReduced);

  QString sansFamily() const { return sansFamily_; }
  /// The family for a headline: the serif family if it has all letters of the text, else the sans family. A
  /// text with letters of two fonts looks broken.
  Q_INVOKABLE QString displayFamily(const QString& text) const;

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
