#include "host/output/iso_date.h"

#include <cmath>
#include <cstdint>

#include "host/values/calendar.h"

namespace qcalc {
namespace {

constexpr std::int64_t kDayMilliseconds = 86'400'000;
constexpr int kDayThatNeverWas = 60;

void AppendDigits(std::string& out, int number, std::size_t width) {
  const std::size_t start = out.size();
  out.append(width, '0');
  for (std::size_t place = width; place > 0; --place, number /= 10)
    out[start + place - 1] = static_cast<char>('0' + number % 10);
}

}  // namespace

bool AppendIsoDate(std::string& out, double serial, bool uses1904) {
  if (!(serial >= 0 && serial < kLastSerial + 1)) return false;
  const auto total = static_cast<std::int64_t>(std::llround(serial * kDayMilliseconds));
  const bool isTimeAlone = serial < 1 && total < kDayMilliseconds;
  const std::int64_t day = total / kDayMilliseconds + DaysFrom1900(uses1904);
  const auto time = static_cast<int>(total % kDayMilliseconds);
  if (!isTimeAlone) {
    if (day > kLastSerial || day == kDayThatNeverWas) return false;
    const CalendarDay date = DayOf(static_cast<int>(day));
    AppendDigits(out, date.year, 4);
    out += '-';
    AppendDigits(out, date.month, 2);
    out += '-';
    AppendDigits(out, date.day, 2);
    if (time == 0) return true;
    out += 'T';
  }
  AppendDigits(out, time / 3'600'000, 2);
  out += ':';
  AppendDigits(out, time / 60'000 % 60, 2);
  out += ':';
  AppendDigits(out, time / 1000 % 60, 2);
  if (time % 1000 == 0) return true;
  out += '.';
  AppendDigits(out, time % 1000, 3);
  return true;
}

}  // namespace qcalc
