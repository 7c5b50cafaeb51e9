// Days and times: DATE, DATEVALUE, DAY, DAYS, EDATE, EOMONTH, HOUR, MINUTE, MONTH, NOW, SECOND, TIME, TIMEVALUE, TODAY,
// WEEKDAY, YEAR.
#include <chrono>
#include <cmath>
#include <ctime>
#include <mutex>

#include "host/calculation/builtins/builtin.h"
#include "host/calculation/formula_operators.h"
#include "host/values/calendar.h"
#include "host/values/date_reading.h"

namespace qcalc {

namespace {

constexpr double kSecondsOfDay = 86'400;

// The day of a serial of the book's date system in that of 1900; nothing for one that no calendar has.
std::optional<int> SerialIn1900(double serial, NumberMarks marks) {
  const double day = std::floor(serial) + DaysFrom1900(marks.uses1904);
  if (!(serial >= 0 && day <= kLastSerial)) return std::nullopt;
  return static_cast<int>(day);
}

// A serial of the 1900 system as one of the book's; #NUM! for days that the calendar does not have.
Value DayResult(std::int64_t serial, NumberMarks marks) {
  const std::int64_t day = serial - DaysFrom1900(marks.uses1904);
  return day < 0 || serial > kLastSerial ? Value::Error(xlerrNum) : Value::Number(static_cast<double>(day));
}

template <typename Calculate>
Value OnNumbers(const BuiltinCall& call, std::vector<Value> operands, Calculate&& calculate) {
  const NumberMarks marks = call.context.marks;
  return BroadcastNumbers(operands, marks, [&](const double* x) { return calculate(x, marks); });
}

// Years before 1900 count from there. Months and days run on into other ones.
Value CallDate(const BuiltinCall& call) {
  return OnNumbers(call, ScalarOperands(call), [](const double* x, NumberMarks marks) {
    constexpr double kMost = 1e6;
    if (!(x[0] >= 0 && x[0] < kLastYear + 1 && std::fabs(x[1]) < kMost && std::fabs(x[2]) < 10 * kMost))
      return Value::Error(xlerrNum);
    const auto year = static_cast<std::int64_t>(x[0]);
    return DayResult(
        SerialBeforeMonth(year < kFirstYear ? year + kFirstYear : year, static_cast<std::int64_t>(std::floor(x[1]))) +
            static_cast<std::int64_t>(std::floor(x[2])),
        marks);
  });
}

template <int CalendarDay::*part>
Value CallPartOfDay(const BuiltinCall& call) {
  return OnNumbers(call, ScalarOperands(call), [](const double* x, NumberMarks marks) {
    const auto serial = SerialIn1900(x[0], marks);
    return serial ? Value::Number(DayOf(*serial).*part) : Value::Error(xlerrNum);
  });
}

// Type 1 counts from Sunday, 2 from Monday, 3 likewise but from 0, 11 to 17 from Monday to Sunday.
Value CallWeekday(const BuiltinCall& call) {
  return OnNumbers(call, ScalarOperands(call, 1, {1}), [](const double* x, NumberMarks marks) {
    const auto serial = SerialIn1900(x[0], marks);
    const double type = std::trunc(x[1]);
    if (!serial || !((type >= 1 && type <= 3) || (type >= 11 && type <= 17))) return Value::Error(xlerrNum);
    const int first = type == 1 ? 0 : type <= 3 ? 1 : static_cast<int>(type) - 10;
    // Day 1 is a Sunday here, where 0 is one.
    return Value::Number((*serial + 6 + 7 - first) % 7 + (type == 3 ? 0 : 1));
  });
}

// The same day so many months on, or the last one of that month.
template <bool isEnd>
Value CallMonthsOn(const BuiltinCall& call) {
  return OnNumbers(call, ScalarOperands(call), [](const double* x, NumberMarks marks) {
    const auto serial = SerialIn1900(x[0], marks);
    constexpr double kMost = 1e6;
    if (!serial || !(std::fabs(x[1]) < kMost)) return Value::Error(xlerrNum);
    const CalendarDay day = DayOf(*serial);
    const auto month = static_cast<std::int64_t>(day.month) + static_cast<std::int64_t>(x[1]);
    const std::int64_t before = SerialBeforeMonth(day.year, month);
    const std::int64_t length = SerialBeforeMonth(day.year, month + 1) - before;
    return DayResult(before + (isEnd ? length : std::min<std::int64_t>(length, day.day)), marks);
  });
}

Value CallDays(const BuiltinCall& call) {
  return OnNumbers(call, ScalarOperands(call), [](const double* x, NumberMarks marks) {
    const auto end = SerialIn1900(x[0], marks), start = SerialIn1900(x[1], marks);
    return end && start ? Value::Number(*end - *start) : Value::Error(xlerrNum);
  });
}

Value CallTime(const BuiltinCall& call) {
  return OnNumbers(call, ScalarOperands(call), [](const double* x, NumberMarks) {
    constexpr double kMost = 32'767;
    const double hours = std::trunc(x[0]), minutes = std::trunc(x[1]), seconds = std::trunc(x[2]);
    const double all = (hours * 60 + minutes) * 60 + seconds;
    if (!(hours <= kMost && minutes <= kMost && seconds <= kMost && all >= 0)) return Value::Error(xlerrNum);
    return Value::Number(std::fmod(all, kSecondsOfDay) / kSecondsOfDay);
  });
}

// So many whole `unit` seconds of the time of day, in the next greater unit; times are rounded to seconds.
template <int unit, int most>
Value CallPartOfTime(const BuiltinCall& call) {
  return OnNumbers(call, ScalarOperands(call), [](const double* x, NumberMarks marks) {
    if (!SerialIn1900(x[0], marks)) return Value::Error(xlerrNum);
    const auto seconds = static_cast<int>(std::floor((x[0] - std::floor(x[0])) * kSecondsOfDay + 0.5));
    return Value::Number(seconds / unit % most);
  });
}

// A date or time in a text; numbers are none.
template <bool isTime>
Value CallReading(const BuiltinCall& call) {
  return Broadcast(ScalarOperands(call), [&](std::span<const CellView> cells) {
    if (cells[0].IsError()) return Value::OfCell(cells[0]);
    if (!cells[0].IsText()) return Value::Error(xlerrValue);
    XStringView text = cells[0].AsText();
    while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
    const auto serial = ReadDateTime(text, call.context.marks);
    if (!serial) return Value::Error(xlerrValue);
    return Value::Number(isTime ? *serial - std::floor(*serial) : std::floor(*serial));
  });
}

// Days and seconds of the local time.
double Now(NumberMarks marks) {
  static std::mutex mutex;
  const std::lock_guard lock(mutex);  // the C library's answer is everyone's
  const std::time_t time = std::time(nullptr);
  const std::tm local = *std::localtime(&time);
  const auto day = SerialBeforeMonth(1900 + local.tm_year, local.tm_mon + 1) + local.tm_mday;
  return static_cast<double>(day - DaysFrom1900(marks.uses1904)) +
         ((local.tm_hour * 60 + local.tm_min) * 60 + local.tm_sec) / kSecondsOfDay;
}

Value CallNow(const BuiltinCall& call) { return Value::Number(Now(call.context.marks)); }
Value CallToday(const BuiltinCall& call) { return Value::Number(std::floor(Now(call.context.marks))); }

constexpr Builtin kDateBuiltins[] = {{XTEXT("DATE"), 3, 3, CallDate},
                                     {XTEXT("DATEVALUE"), 1, 1, CallReading<false>},
                                     {XTEXT("DAY"), 1, 1, CallPartOfDay<&CalendarDay::day>},
                                     {XTEXT("DAYS"), 2, 2, CallDays},
                                     {XTEXT("EDATE"), 2, 2, CallMonthsOn<false>},
                                     {XTEXT("EOMONTH"), 2, 2, CallMonthsOn<true>},
                                     {XTEXT("HOUR"), 1, 1, CallPartOfTime<3600, 24>},
                                     {XTEXT("MINUTE"), 1, 1, CallPartOfTime<60, 60>},
                                     {XTEXT("MONTH"), 1, 1, CallPartOfDay<&CalendarDay::month>},
                                     {XTEXT("NOW"), 0, 0, CallNow, "v", true},
                                     {XTEXT("SECOND"), 1, 1, CallPartOfTime<1, 60>},
                                     {XTEXT("TIME"), 3, 3, CallTime},
                                     {XTEXT("TIMEVALUE"), 1, 1, CallReading<true>},
                                     {XTEXT("TODAY"), 0, 0, CallToday, "v", true},
                                     {XTEXT("WEEKDAY"), 1, 2, CallWeekday},
                                     {XTEXT("YEAR"), 1, 1, CallPartOfDay<&CalendarDay::year>}};

}  // namespace

std::span<const Builtin> DateBuiltins() { return kDateBuiltins; }

}  // namespace qcalc
