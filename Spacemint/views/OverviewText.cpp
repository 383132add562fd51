#include "Spacemint/views/OverviewText.h"

#include "core/base/ByteFormat.h"
#include "core/base/RelativeTime.h"
#include "core/wording/FindingText.h"

#include <QDateTime>
#include <QLocale>

namespace spacemint {

std::string OverviewText::growth(const Findings& findings, const std::string& locale) {
  if (findings.baselineUnavailable) return std::string{baselineUnreadable};
  if (!findings.baselineFree) return std::string{FindingText::nothingToCompare};
  return findings.growth.empty() ? FindingText::nothingGrew(Findings::growthMinimum, locale) : "";
}

std::string OverviewText::freeChange(const Findings& findings, Bytes freeNow, const std::string& locale) {
  if (findings.baselineUnavailable || !findings.baselineFree) return "";
  return FindingText::freeChange(*findings.baselineFree, freeNow, locale);
}

std::string OverviewText::delta(const Growth& growth, const std::string& locale) {
  return "+" + ByteFormat::string(growth.delta, locale);
}

std::string OverviewText::growthToggle(int count, bool showsAll) {
  if (count <= growthShown) return "";
  return showsAll ? "Show less" : "Show all " + std::to_string(count);
}

std::string OverviewText::baseline(Date date, const When& when) {
  const auto seconds = std::chrono::floor<std::chrono::seconds>(date).time_since_epoch().count();
  const QTime time = QDateTime::fromSecsSinceEpoch(seconds, when.zone).time();
  const QLocale locale{QString::fromStdString(when.locale)};
  return RelativeTime::string(date, when.now, when.locale) + " · " +
         locale.toString(time, QLocale::ShortFormat).toStdString();
}

}  // namespace spacemint
