#include "ui_kit/Theme.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QGuiApplication>
#include <QRawFont>

#include <algorithm>

namespace spacemint {

namespace {

/// The family, or the desktop's family if it is not installed.
QString familyOr(const QString& family) {
  return QFontDatabase::hasFamily(family) ? family : QGuiApplication::font().family();
}

}  // namespace

Theme::Theme(QObject* parent)
    : QObject(parent),
      sansFamily_(familyOr(QStringLiteral("Inter"))),
      serifFamily_(familyOr(QStringLiteral("Source Serif 4"))) {}

QString Theme::displayFamily(const QString& text) const {
  const auto font = QRawFont::fromFont(QFont{serifFamily_});
  const auto letters = text.toUcs4();
  return std::ranges::all_of(letters, [&](uint letter) { return font.supportsCharacter(letter); })
             ? serifFamily_
             : sansFamily_;
}

void Theme::setDark(bool isDark) {
  if (isDark == isDark_) return;
  isDark_ = isDark;
  Q_EMIT isDarkChanged();
}

void Theme::setTextScale(qreal scale) {
  scale = std::clamp(scale, 1.0, 2.0);
  if (scale == textScale_) return;
  textScale_ = scale;
  Q_EMIT textScaleChanged();
}

qreal Theme::textScaleOf(const QFont& desktopFont) {
  constexpr qreal usualPoints = 10;
  return QFontInfo(desktopFont).pointSizeF() / usualPoints;
}

void Theme::setReducedMotion(bool isReduced) {
  if (isReduced == reducedMotion_) return;
  reducedMotion_ = isReduced;
  Q_EMIT reducedMotionChanged();
}

}  // namespace spacemint
