#include "host/values/calendar.h"

namespace qcalc {

namespace {

// The 1900 system has a 29 February 1900.
bool IsLeap(int year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0 || year == 1900; }

int DaysBeforeMonth(int year, int month) {
  static constexpr int kDaysBefore[] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334, 365};
  return kDaysBefore[month - 1] + (month > 2 && IsLeap(year) ? 1 : 0);
}

int DaysBeforeYear(int year) {
  const auto leapYearsUpTo = [](int last) { return last / 4 - last / 100 + last / 400; };
  return (year - kFirstYear) * 365 + leapYearsUpTo(year - 1) - leapYearsUpTo(kFirstYear - 1) + (year > 1900 ? 1 : 0);
}

}  // namespace

std::optional<int> SerialOf(const CalendarDay& day) {
  if (day.year < kFirstYear || day.year > kLastYear || day.month < 1 || day.month > 12 || day.day < 1)
    return std::nullopt;
  if (day.day > DaysBeforeMonth(day.year, day.month + 1) - DaysBeforeMonth(day.year, day.month)) return std::nullopt;
  return DaysBeforeYear(day.year) + DaysBeforeMonth(day.year, day.month) + day.day;
}

CalendarDay DayOf(int serial) {
  CalendarDay day;
  if (serial == 0) return day;
  day.year = kFirstYear + (serial - 1) / 366;
  while (DaysBeforeYear(day.year + 1) < serial) ++day.year;
  const int dayOfYear = serial - DaysBeforeYear(day.year);
  day.month = 12;
  while (DaysBeforeMonth(day.year, day.month) >= dayOfYear) --day.month;
  day.day = dayOfYear - DaysBeforeMonth(day.year, day.month);
  return day;
}

}  // namespace qcalc
