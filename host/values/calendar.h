// The days of the date systems, and the names of the months.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace qcalc {

constexpr int kFirstYear = 1900;
constexpr int kLastYear = 9999;
constexpr int kLastSerial = 2'958'465;  ///< 31 December 9999

constexpr std::array<std::string_view, 12> kMonthNames = {"January",   "February", "March",    "April",
                                                          "May",       "June",     "July",     "August",
                                                          "September", "October",  "November", "December"};

/// A day; months and days count from 1. Excel's day 0 is the "0 January 1900".
struct CalendarDay {
  int year = kFirstYear;
  int month = 1;
  int day = 0;
};

/// The serial: day 1 is 1 January 1900, day 60 the 29 February 1900 that never was. Nothing when no such day exists.
std::optional<int> SerialOf(const CalendarDay& day);

/// The day of a serial from 0 to kLastSerial.
CalendarDay DayOf(int serial);

/// The serial of a month's first day less 1. Months count from 1, and run on before the first and behind the twelfth
/// into other years; `year` and the year that they lead to are within a million years.
std::int64_t SerialBeforeMonth(std::int64_t year, std::int64_t month);

/// The days of the month, from 28 to 31; February 1900 has 29.
int DaysOfMonth(int year, int month);

/// The serial of 1 January 1904, which in the 1904 system is day 0.
constexpr int kSerialOf1904 = 1462;
/// What a serial of the book lacks to one of the 1900 system.
constexpr int DaysFrom1900(bool uses1904) { return uses1904 ? kSerialOf1904 : 0; }

}  // namespace qcalc
