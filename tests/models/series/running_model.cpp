#include <algorithm>
#include <cmath>

#include "tests/models/series/model.h"

namespace qcalc::series {

using Series = std::vector<long double>;

Figure::Figure(long double number, long double magnitude, long double roundings)
    : cell(CellView::Number(static_cast<double>(number))),
      // A number that is next to nothing may be lost below the least one that there is.
      off(CellView::Number(static_cast<double>(roundings == 0 ? 0 : magnitude * roundings * 2.3e-16L + 1e-300L))) {}

std::optional<double> NumberIn(const CellView& cell) {
  if (cell.IsEmpty()) return 0;
  if (cell.IsBoolean()) return cell.AsBoolean();
  if (cell.IsNumber()) return cell.AsNumber();
  if (cell.IsText() && cell.AsText() == XTEXT(" 2.5")) return 2.5;
  if (cell.IsText() && cell.AsText() == XTEXT("-1e3")) return -1000;
  return std::nullopt;
}

Numbers ReadNumbers(const FieldCall& call, std::size_t operand, XStringView name) {
  Numbers numbers{call.Cells(operand), std::nullopt};
  for (CellView& cell : numbers.cells.cells) {
    const std::optional<double> number = NumberIn(cell);
    if (!number) return {{}, Value::Text(XTEXT("#ERROR: Expected number for ") + XString(name))};
    cell = CellView::Number(*number);
  }
  return numbers;
}

std::optional<Value> BadCode(const FieldCall& call, std::size_t operand, std::int32_t first, std::int32_t last,
                             XStringView name) {
  const std::int32_t code = call.Number(operand, first);
  if (code >= first && code <= last) return std::nullopt;
  XString text = XTEXT("#ERROR: Expected one of ");
  for (std::int32_t one = first; one <= last; ++one)
    text += (one == first ? XString() : XString(XTEXT(", "))) + static_cast<XCHAR>(XTEXT('0') + one);
  return Value::Text(text + XTEXT(" for ") + XString(name));
}

std::optional<Value> BadNumber(const FieldCall& call, std::size_t operand, XStringView name, XStringView kind) {
  const CellView cell = call.Cell(operand, CellView::Number(0));
  if (!cell.IsText() && !cell.IsError()) return std::nullopt;
  const XString from = cell.IsText() ? XTEXT("string") : XTEXT("error");
  return Value::Text(XTEXT("#ERROR: Failed to convert ") + XString(name) + XTEXT(" from ") + from + XTEXT(" to ") +
                     XString(kind));
}

namespace {

/// Whether there is no series: nothing, or one empty cell.
bool IsNothing(const Grid& cells) { return cells.rows == 0 || (cells.cells.size() == 1 && cells.cells[0].IsEmpty()); }

/// Whether series run down the columns: `isDown` says it where the shape does not.
bool RunsDown(const Grid& cells, bool isDown) {
  if (cells.rows == 1 && cells.columns > 1) return false;
  return (cells.rows > 1 && cells.columns == 1) || isDown;
}

/// What `figures` makes of each series, in its place.
template <typename Make>
Expected BySeries(const Numbers& numbers, bool isDown, Make&& figures) {
  const Grid lines = isDown ? numbers.cells.Turned() : numbers.cells;
  std::vector<std::vector<Figure>> made;
  for (std::int32_t line = 0; line < lines.rows; ++line) {
    Series series;
    for (const CellView& cell : lines.Row(line)) series.push_back(cell.AsNumber());
    made.push_back(figures(series));
  }
  return Figures(numbers.cells.rows, numbers.cells.columns, [&](std::int32_t row, std::int32_t column) {
    return made[static_cast<std::size_t>(isDown ? column : row)][static_cast<std::size_t>(isDown ? row : column)];
  });
}

Series Magnitudes(Series series) {
  for (long double& number : series) number = std::abs(number);
  return series;
}

/// The average of those from `first` to `last`, both taken in; `isWeighted`: the last counts as often as there are.
long double Average(const Series& series, std::size_t first, std::size_t last, bool isWeighted = false) {
  long double sum = 0, weights = 0;
  for (std::size_t at = first; at <= last; ++at) {
    const auto weight = static_cast<long double>(isWeighted ? at - first + 1 : 1);
    sum += weight * series[at];
    weights += weight;
  }
  return sum / weights;
}

/// Exponential averages, or double ones; magnitudes are added where the double ones subtract.
Series Exponential(const Series& series, std::int32_t n, std::int32_t startExp, bool isDouble, int sign) {
  const long double alpha = 2 / (static_cast<long double>(n) + 1);
  const auto run = [&](long double& from, long double number) { from = alpha * number + (1 - alpha) * from; };
  long double start = series.back();
  if (startExp < 0)
    for (std::size_t at = series.size() - 1; at-- > 0;) run(start, series[at]);
  const auto most = static_cast<std::int32_t>(series.size());
  if (startExp >= 0)
    start = Average(series, 0, static_cast<std::size_t>(startExp > 0 ? startExp : std::min(n, most)) - 1);
  long double once = start, twice = start;
  Series result;
  for (std::size_t at = 0; at < series.size(); ++at) {
    if (at > 0) run(once, series[at]), run(twice, once);
    result.push_back(isDouble ? 2 * once + static_cast<long double>(sign) * twice : once);
  }
  return result;
}

std::vector<Figure> MovingAverages(const Series& series, std::int32_t n, std::int32_t method, std::int32_t startExp) {
  const Series magnitudes = Magnitudes(series);
  std::vector<Figure> result(series.size());
  if (method >= 5) {
    const Series averages = Exponential(series, n, startExp, method == 6, -1);
    const Series sizes = Exponential(magnitudes, n, startExp, method == 6, 1);
    for (std::size_t at = 0; at < series.size(); ++at)
      result[at] = Figure(averages[at], sizes[at], static_cast<long double>(at + 8 + (startExp != 1) * series.size()));
    return result;
  }
  for (std::size_t at = 0; at < series.size(); ++at) {
    const auto window = static_cast<std::size_t>(method == 3 ? static_cast<std::int32_t>(at) + 1 : n);
    const std::size_t after = method == 2 ? window / 2 : 0;
    if (at + after + 1 < window || at + after >= series.size()) continue;
    const std::size_t first = at + after + 1 - window;
    result[at] =
        Figure(Average(series, first, at + after, method == 4), Average(magnitudes, first, at + after, method == 4),
               method == 3 ? static_cast<long double>(at + 8) : 16);
  }
  return result;
}

}  // namespace

Expected ExpectedAverages(const FieldCall& call) {
  if (IsNothing(call.Cells(0))) return kValueError;
  const Numbers numbers = ReadNumbers(call, 0, XTEXT("Range_Array"));
  if (numbers.failure) return *numbers.failure;
  if (const auto bad = BadNumber(call, 4, XTEXT("StartExp"), XTEXT("integer"))) return *bad;
  const std::int32_t method = call.Number(2, 0), n = call.Number(1, 0), startExp = call.Number(4, 1);
  if (method < 1 || method > 6) return Value::Text(XTEXT("#ERROR: Expected one of 1, 2, 3, 4, 5, 6 for MA_Method"));
  const bool isDown = RunsDown(numbers.cells, call.Number(3, 1) != 0);
  const std::int32_t length = isDown ? numbers.cells.rows : numbers.cells.columns;
  const XString told = XTEXT("#ERROR: Number of Items per average must be ");
  if (method != 3 && n < 2) return Value::Text(told + XTEXT(">1"));
  if ((method == 1 || method == 2 || method == 4) && n >= length)
    return Value::Text(told + (isDown ? XTEXT("< Number of Rows") : XTEXT("< Number of Columnns")));
  if (method >= 5 && startExp > length)
    return Value::Text(XTEXT("#ERROR: StartExp must be <= Number of data points in the series"));
  return BySeries(numbers, isDown, [&](const Series& series) { return MovingAverages(series, n, method, startExp); });
}

Expected ExpectedRunning(const FieldCall& call) {
  if (IsNothing(call.Cells(0))) return kValueError;
  const bool isTotal = call.function == XTEXT("ACCUMULATE");
  const Numbers numbers = ReadNumbers(call, 0, XTEXT("Range_Array"));
  if (numbers.failure) return *numbers.failure;
  if (const auto bad = isTotal ? BadNumber(call, 2, XTEXT("Start"), XTEXT("number"))
                               : BadNumber(call, 1, XTEXT("Lag"), XTEXT("integer")))
    return *bad;
  const bool isDown = RunsDown(numbers.cells, call.Number(isTotal ? 1 : 2, 1) != 0);
  const std::int32_t lag = isTotal ? 1 : call.Number(1, 1);
  if (lag < 1) return kValueError;
  const long double start = isTotal ? *NumberIn(call.Cell(2, {})) : 0;
  return BySeries(numbers, isDown, [&](const Series& series) {
    std::vector<Figure> result;
    long double total = start, magnitude = std::abs(start);
    for (std::size_t at = 0; at < series.size(); ++at) {
      total += series[at], magnitude += std::abs(series[at]);
      const std::size_t before = at - static_cast<std::size_t>(lag);
      result.push_back(isTotal        ? Figure(total, magnitude, 8)
                       : before >= at ? Figure::None()
                                      : Figure(static_cast<double>(series[at]) - static_cast<double>(series[before])));
    }
    return result;
  });
}

Expected ExpectedCorkscrew(const FieldCall& call) {
  if (call.Cells(0).rows == 0 || call.Cells(1).rows == 0) return kValueError;
  Numbers flows = ReadNumbers(call, 1, XTEXT("Flows"));
  if (flows.failure) return *flows.failure;
  const bool isDown = call.Number(2, 0) != 0;
  if (isDown) flows.cells = flows.cells.Turned();
  const std::int32_t last = flows.cells.rows + 1;
  std::vector<std::vector<Figure>> periods;
  long double balance = *NumberIn(call.Cell(0, {})), magnitude = std::abs(balance);
  for (std::int32_t period = 0; period < flows.cells.columns; ++period) {
    std::vector<Figure>& figures = periods.emplace_back();
    figures.emplace_back(balance, magnitude, 8);
    for (std::int32_t flow = 0; flow < flows.cells.rows; ++flow) {
      figures.emplace_back(flows.At(flow, period));
      balance += flows.At(flow, period), magnitude += std::abs(flows.At(flow, period));
    }
    figures.emplace_back(balance, magnitude, 8);
  }
  return Figures(isDown ? flows.cells.columns : last + 1, isDown ? last + 1 : flows.cells.columns,
                 [&](std::int32_t row, std::int32_t column) {
                   const auto period = static_cast<std::size_t>(isDown ? row : column);
                   return periods[period][static_cast<std::size_t>(isDown ? column : row)];
                 });
}

}  // namespace qcalc::series
