// The days of the 1900 date system, and the names of the months.
#pragma once

#include <array>
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

}  // namespace qcalc
