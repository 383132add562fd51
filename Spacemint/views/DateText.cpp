#include "Spacemint/views/DateText.h"

#include "Spacemint/views/ShownText.h"
#include "core/base/Translation.h"

#include <QDateTime>
#include <QLocale>
#include <QTimeZone>

namespace spacemint {

namespace {

QDateTime localTime(Date date) {
  const auto seconds = std::chrono::floor<std::chrono::seconds>(date).time_since_epoch().count();
  return QDateTime::fromSecsSinceEpoch(seconds, QTimeZone::systemTimeZone());
}

QString formatted(Date date, const QString& format) {
  return QLocale{ShownText::plain(sentenceLanguage())}.toString(localTime(date).date(), format);
}

}  // namespace

QString DateText::moment(Date date, const std::string& locale) {
  return formatted(date, QStringLiteral("ddd d MMM")) + QStringLiteral(", ") + time(date, locale);
}

QString DateText::day(Date date) {
  return formatted(date, QStringLiteral("d MMM"));
}

QString DateText::time(Date date, const std::string& locale) {
  return QLocale{ShownText::plain(locale)}.toString(localTime(date).time(), QLocale::ShortFormat);
}

QString DateText::month(Date date) {
  return formatted(date, QStringLiteral("MMM yyyy"));
}

}  // namespace spacemint
