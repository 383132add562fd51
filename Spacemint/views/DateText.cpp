#include "Spacemint/views/DateText.h"

#include "Spacemint/views/ShownText.h"
#include "core/base/DateWords.h"
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

bool isEnglish() {
  return sentenceLanguage() == "en";
}

QString inEnglish(Date date, const QString& format) {
  return QLocale{QLocale::English}.toString(localTime(date).date(), format);
}

QString inWords(Date date, const char* skeleton, const std::string& locale) {
  return ShownText::plain(dateInWords(date, skeleton, locale));
}

}  // namespace

QString DateText::moment(Date date, const std::string& locale) {
  if (!isEnglish()) return inWords(date, "EEEdMMMjm", locale);
  return inEnglish(date, QStringLiteral("ddd d MMM, ")) + time(date, locale);
}

QString DateText::day(Date date) {
  return isEnglish() ? inEnglish(date, QStringLiteral("d MMM")) : inWords(date, "dMMM", sentenceLanguage());
}

QString DateText::time(Date date, const std::string& locale) {
  return QLocale{ShownText::plain(locale)}.toString(localTime(date).time(), QLocale::ShortFormat);
}

QString DateText::month(Date date) {
  return isEnglish() ? inEnglish(date, QStringLiteral("MMM yyyy"))
                     : inWords(date, "yMMM", sentenceLanguage());
}

}  // namespace spacemint
