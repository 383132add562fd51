#include "core/base/CalendarDays.h"

#include <gtest/gtest.h>

#include <climits>

namespace spacemint {
namespace {

using namespace std::chrono_literals;
using std::chrono::local_days;
using std::chrono::sys_days;
using std::chrono::year_month_day;

TEST(CalendarDays, areThoseOfThePlace) {
  struct Case {
    const char* zone;
    Date date;
    std::optional<year_month_day> day;
  };
  const Date evening = sys_days{2023y / 11 / 10} + 23h + 30min;
  const Case cases[]{
      {"UTC", evening, 2023y / 11 / 10},
      {"Europe/Berlin", evening, 2023y / 11 / 11},
      {"Europe/Berlin", sys_days{2023y / 7 / 9} + 22h, 2023y / 7 / 10},  // two hours ahead in summer
      {"Europe/Berlin", sys_days{2023y / 7 / 9} + 22h - 1us, 2023y / 7 / 9},
      {"America/New_York", sys_days{2023y / 11 / 10} + 4h + 59min, 2023y / 11 / 9},
      {"Asia/Kolkata", sys_days{2023y / 11 / 10} + 18h + 30min, 2023y / 11 / 11},
      {"Pacific/Apia", sys_days{2011y / 12 / 30} + 10h, 2011y / 12 / 31},  // where the 30th was left out
      {"UTC", Date{} - 1us, 1969y / 12 / 31},
      {"Nowhere/Land", evening, std::nullopt},
      {"", evening, std::nullopt},
  };
  for (const Case& c : cases) {
    const auto day = calendarDay(c.date, c.zone);
    EXPECT_EQ(day, c.day ? std::optional{local_days{*c.day}} : std::nullopt)
        << c.zone << ' ' << c.date.time_since_epoch();
    EXPECT_EQ(isKnownTimeZone(c.zone), c.day.has_value());
  }
}

TEST(CalendarDays, areCountedBackAtTheSameClockTime) {
  struct Case {
    const char* zone;
    Date date;
    int days;
    std::optional<Date> earlier;
  };
  const Case cases[]{
      {"UTC", sys_days{2024y / 3 / 14} + 7us, 14, sys_days{2024y / 2 / 29} + 7us},
      {"UTC", sys_days{2024y / 3 / 14}, -1, sys_days{2024y / 3 / 15}},
      {"UTC", Date{} - 1us, 1, Date{} - 24h - 1us},
      // Over the end and the beginning of summer time: a day of 25 hours, and one of 23.
      {"Europe/Berlin", sys_days{2023y / 11 / 5} + 11h, 14, sys_days{2023y / 10 / 22} + 10h},
      {"Europe/Berlin", sys_days{2024y / 4 / 1} + 10h, 1, sys_days{2024y / 3 / 31} + 10h},
      {"Europe/Berlin", sys_days{2024y / 4 / 1} + 10h, 2, sys_days{2024y / 3 / 30} + 11h},
      // 02:30 did not exist on the tenth, and existed twice on the 29th.
      {"America/New_York", sys_days{2024y / 3 / 24} + 6h + 30min, 14, sys_days{2024y / 3 / 10} + 7h + 30min},
      {"Europe/Berlin", sys_days{2023y / 11 / 12} + 1h + 30min, 14, sys_days{2023y / 10 / 29} + 1h + 30min},
      {"Nowhere/Land", sys_days{2024y / 3 / 14}, 14, std::nullopt},
      {"UTC", Date{}, INT_MIN, std::nullopt},
      {"UTC", Date::min(), 1, std::nullopt},
  };
  for (const Case& c : cases)
    EXPECT_EQ(daysEarlier(c.date, c.days, c.zone), c.earlier) << c.zone << ' ' << c.date.time_since_epoch();
}

}  // namespace
}  // namespace spacemint
