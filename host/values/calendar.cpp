#include "host/values/calendar.h"

namespace qcalc {

namespace {

// The 1900 system has a 29 February 1900.
bool IsLeap(std::int64_t year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0 || year == 1900; }

int DaysBeforeMonth(std::int64_t year, int month) {
  static constexpr int kDaysBefore[] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334, 365};
  return kDaysBefore[month - 1] + (month > 2 && IsLeap(year) ? 1 : 0);
}

// Day 0 of the year 1900 is 0.
std::int64_t DaysBeforeYear(std::int64_t year) {
  const auto leapYearsUpTo = [](std::int64_t last) {
    const auto every = [last](std::int64_t years) { return (last - ((last % years) + years) % years) / years; };
    return every(4) - every(100) + every(400);
  };
  return (year - kFirstYear) * 365 + leapYearsUpTo(year - 1) - leapYearsUpTo(kFirstYear - 1) + (year > 1900 ? 1 : 0);
}

}  // namespace

std::optional<int> SerialOf(const CalendarDay& day) {
  if (day.year < kFirstYear || day.year > kLastYear || day.month < 1 || day.month > 12 || day.day < 1)
    return std::nullopt;
  if (day.day > DaysOfMonth(day.year, day.month)) return std::nullopt;
  return static_cast<int>(SerialBeforeMonth(day.year, day.month)) + day.day;
}

CalendarDay DayOf(int serial) {
  CalendarDay day;
  if (serial == 0) return day;
  day.year = kFirstYear + (serial - 1) / 366;
  while (DaysBeforeYear(day.year + 1) < serial) ++day.year;
  const int dayOfYear = serial - static_cast<int>(DaysBeforeYear(day.year));
  day.month = 12;
  while (DaysBeforeMonth(day.year, day.month) >= dayOfYear) --day.month;
  day.day = dayOfYear - DaysBeforeMonth(day.year, day.month);
  return day;
}

std::int64_t SerialBeforeMonth(std::int64_t year, std::int64_t month) {
  const std::int64_t inYear = ((month - 1) % 12 + 12) % 12;
  year += (month - 1 - inYear) / 12;
  return DaysBeforeYear(year) + DaysBeforeMonth(year, static_cast<int>(inYear) + 1);
}

int DaysOfMonth(int year, int month) { return DaysBeforeMonth(year, month + 1) - DaysBeforeMonth(year, month); }

}  // namespace qcalc
