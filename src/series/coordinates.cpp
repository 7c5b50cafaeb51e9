#include "series/coordinates.h"

#include <algorithm>
#include <array>
#include <bit>
#include <limits>
#include <numeric>
#include <vector>

#include "table/bisection.h"

namespace quillmere::series {
namespace {

/// So many bisections go on side by side: while one waits for its number, the others' are on their way.
constexpr std::size_t kLanes = 32;

/// Looking at a cell of an array takes as long as writing down so many coordinates beforehand.
constexpr std::int64_t kCellsWorthALook = 4;

double WeightOf(double value, double low, double high) noexcept {
  const double weight = (value - low) / (high - low);
  if (std::isfinite(value - low) && std::isfinite(high - low)) [[likely]]
    return weight;
  return (value / 2 - low / 2) / (high / 2 - low / 2);
}

/// A search among coordinates that `at(place)` gives. Those that descend are searched with the opposite sign.
template <class NumberAt>
class Search {
 public:
  /// There is one coordinate at least.
  Search(const NumberAt& at, std::int32_t count, Order order, Outside outside)
      : at_(at), count_(count), outside_(outside) {
    const double first = at(0);
    const double last = count == 1 ? first : at(count - 1);
    sign_ = last < first ? -1 : 1;
    isInOrder_ = first < last || (last < first && order == Order::kEither);
  }

  /// Takes in what the middle coordinate is.
  void Step(Bisection& bisection, double middle, double value) const noexcept {
    const bool isBefore = IsBefore(middle, value);
    bisection.Step<SortOrder::kAscending, RunEnd::kFirst>(isBefore, !isBefore);
  }

  Bracket Find(double value) const {
    double low = 0;
    double high = 0;
    Bisection bisection(count_);
    while (!bisection.IsDone()) {
      const double middle = at_(bisection.Middle());
      Step(bisection, middle, value);
      (IsBefore(middle, value) ? low : high) = middle;
    }
    return BracketAt(bisection, low, high, value);
  }

  /// What a bisection that is done says; `low` and `high` are the numbers at its places, where they are such.
  Bracket BracketAt(const Bisection& done, double low, double high, double value) const {
    if (done.high < count_ && high == value) return {done.high, done.high, 0};
    if (!isInOrder_) return {};
    if (done.low >= 0 && done.high < count_) return {done.low, done.high, WeightOf(value, low, high)};
    const std::int32_t edge = std::min(done.high, count_ - 1);
    if (outside_ == Outside::kNearestEdge) return {edge, edge, 0};
    return outside_ == Outside::kExtrapolated ? Extrapolated(std::min(edge, count_ - 2), value) : Bracket{};
  }

 private:
  bool IsBefore(double coordinate, double value) const noexcept { return sign_ * coordinate < sign_ * value; }

  Bracket Extrapolated(std::int32_t place, double value) const {
    const double low = at_(place);
    const double high = at_(place + 1);
    return IsBefore(low, high) ? Bracket{place, place + 1, WeightOf(value, low, high)} : Bracket{};
  }

  const NumberAt& at_;
  std::int32_t count_;
  Outside outside_;
  double sign_;
  bool isInOrder_;
};

/// All coordinates of a line, beside each other in memory.
struct WrittenLine {
  ScratchArray<double> numbers;  ///< not a number for a cell that is none
  std::int32_t count = 0;        ///< without empty cells at the end
  bool areAllNumbers = true;
};

WrittenLine WriteDown(const CoordinateLine& line) {
  std::vector<std::int32_t> columns(static_cast<std::size_t>(line.isDown ? 1 : line.count));
  std::iota(columns.begin(), columns.end(), line.column);
  WrittenLine written{ScratchArray<double>(static_cast<std::size_t>(line.count))};
  std::int32_t place = 0;
  ForEachCell(line.table.SomeRows(line.row, line.isDown ? line.count : 1), columns, [&](const XLOPER12& cell) {
    const double number = NumberOrNone(cell);
    written.numbers[static_cast<std::size_t>(place++)] = number;
    written.areAllNumbers &= !std::isnan(number);
    if (!IsEmptyCell(cell)) written.count = place;
  });
  return written;
}

/// How many coordinates there are without the empty cells at the end, which are read in steps that grow.
std::int32_t CountCoordinates(const CoordinateLine& line) {
  for (std::int32_t end = line.count, step = 1; end > 0; step = std::min(step * 16, RowBlocks::kBlockCells)) {
    const std::int32_t first = std::max(end - step, 0);
    const std::int32_t filled = WriteDown(line.Part(first, end - first)).count;
    if (filled > 0) return first + filled;
    end = first;
  }
  return 0;
}

/// Bisects for many values; no coordinate is looked at that is not a number.
template <class NumberAt>
void FindSideBySide(const Search<NumberAt>& search, std::span<const double> numbers, std::span<const double> values,
                    Bracket* to) {
  // So many halvings leave every bisection with something to halve; after them it is done or has one place to look at.
  const int rounds = static_cast<int>(std::bit_width(numbers.size() + 1)) - 1;
  std::array<Bisection, kLanes> lanes;
  for (std::size_t first = 0; first < values.size(); first += kLanes) {
    const std::size_t count = std::min(kLanes, values.size() - first);
    const auto step = [&](std::size_t lane) {
      search.Step(lanes[lane], numbers[static_cast<std::size_t>(lanes[lane].Middle())], values[first + lane]);
    };
    for (std::size_t lane = 0; lane < count; ++lane) {
      // In place, since one put together elsewhere is waited for.
      lanes[lane].low = -1;
      lanes[lane].high = static_cast<std::int32_t>(numbers.size());
    }
    for (int round = 0; round < rounds; ++round)
      for (std::size_t lane = 0; lane < count; ++lane) step(lane);
    for (std::size_t lane = 0; lane < count; ++lane) {
      if (!lanes[lane].IsDone()) step(lane);
      const auto low = static_cast<std::size_t>(std::max(lanes[lane].low, 0));
      const std::size_t high = std::min(static_cast<std::size_t>(lanes[lane].high), numbers.size() - 1);
      *to++ = search.BracketAt(lanes[lane], numbers[low], numbers[high], values[first + lane]);
    }
  }
}

}  // namespace

PlaceRange RangeOf(std::span<const Bracket> brackets) noexcept {
  PlaceRange range{std::numeric_limits<std::int32_t>::max(), -1};
  for (const Bracket& bracket : brackets) {
    if (bracket.IsNowhere()) continue;
    range.first = std::min(range.first, bracket.low);
    range.last = std::max(range.last, bracket.high);
  }
  return range.last < 0 ? PlaceRange{0, -1} : range;
}

ScratchArray<Bracket> FindBrackets(const CoordinateLine& line, std::span<const double> values, Order order,
                                   Outside outside) {
  ScratchArray<Bracket> brackets(values.size());
  const auto findEach = [&](const auto& search) {
    std::ranges::transform(values, brackets.begin(), [&](double value) { return search.Find(value); });
  };
  const std::int64_t looks = std::bit_width(static_cast<std::uint32_t>(line.count)) * std::ssize(values);
  if (looks * (line.table.IsReference() ? kCellsWorthACallback : kCellsWorthALook) < line.count) {
    if (const std::int32_t count = CountCoordinates(line); count != 0) {
      const auto at = [&](std::int32_t place) { return NumberIn(line.ReadCell(place).Raw(), line.argument); };
      findEach(Search(at, count, order, outside));
      return brackets;
    }
  } else if (const WrittenLine written = WriteDown(line); written.count != 0) {
    const std::span<const double> numbers(written.numbers.data(), static_cast<std::size_t>(written.count));
    const auto at = [&](std::int32_t place) {
      return CheckedNumber(numbers[static_cast<std::size_t>(place)], line.argument);
    };
    const Search search(at, written.count, order, outside);
    if (written.areAllNumbers)
      FindSideBySide(search, numbers, values, brackets.data());
    else
      findEach(search);
    return brackets;
  }
  std::ranges::fill(brackets, Bracket{});
  return brackets;
}

}  // namespace quillmere::series
