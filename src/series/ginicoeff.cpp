// How unequal numbers are.
//
// Serves GINICOEFF.
#include <algorithm>
#include <bit>
#include <cmath>
#include <optional>
#include <span>

#include "frame/convert/argument.h"
#include "frame/values/scratch_list.h"
#include "implementations/series.h"
#include "table/compensated_sum.h"
#include "table/gathered_cells.h"
#include "table/row_blocks.h"
#include "table/word_sort.h"

namespace quillmere::series {
namespace {

/// Numbers as the bits that they are made of: those that are not negative have the order of these.
using NumberWords = ScratchList<std::uint64_t>;

/// All numbers of a table, and the code of its first error, behind which no more is read. A number that is negative, or
/// none at all, is told of.
struct FoundNumbers {
  NumberWords words;
  std::optional<std::int32_t> error;
  bool anyNegative = false;

  void Take(std::span<const double> numbers) {
    words.MakeRoomFor(numbers.size());
    std::uint64_t* to = words.Room() + words.size();
    for (const double number : numbers) {
      anyNegative |= !(number >= 0);
      *to++ = std::bit_cast<std::uint64_t>(number + 0.0);  // a zero below zero becomes one above it
    }
    words.SetSize(words.size() + numbers.size());
  }
};

FoundNumbers ReadNumbers(const TableView& table) {
  constexpr std::int64_t kCells = 4096;  // whose numbers are still in the processor's cache when they are taken
  FoundNumbers numbers;
  GatheredCells cells(kCells);
  for (RowBlocks blocks(table); !numbers.error && blocks.Next();) {
    // A block of all columns: its rows follow each other without a gap.
    const XLOPER12* const first = &blocks.At(0, 0);
    const std::int64_t count = std::int64_t{blocks.Rows()} * table.Columns();
    for (std::int64_t at = 0; !numbers.error && at < count; at += kCells) {
      cells.Clear();
      cells.Gather(first + at, static_cast<std::int32_t>(std::min(kCells, count - at)), 1);
      numbers.Take(cells.Numbers());
      numbers.error = cells.Error();
    }
  }
  return numbers;
}

void Sort(NumberWords& words) {
  std::uint64_t differing = 0;
  for (const std::uint64_t word : words) differing |= word ^ words[0];
  if (differing == 0) return;
  const int steady = std::countr_zero(differing);
  ScratchArray<std::uint64_t> spare(words.size());
  SortWords({words.begin(), words.size()}, {spare.data(), spare.size()}, steady,
            static_cast<int>(std::bit_width(differing)) - steady);
}

/// The sum of (2i - n - 1) x_i over n times the sum of all, x_i ascending, i from 1: Gini, "Variabilita e mutabilita"
/// (1912), in the form for sorted values. Taken in pairs from both ends the terms are differences, none of them
/// negative, so that nothing cancels and equal numbers give 0.
double GiniOf(const NumberWords& sorted) {
  constexpr double kNearlyTooLarge = 0x1p900;
  const auto numberAt = [&](std::size_t place) { return std::bit_cast<double>(sorted[place]); };
  const std::size_t count = sorted.size();
  // The coefficient does not hang on the unit of the numbers, but the sums may be larger than any number.
  const double unit = numberAt(count - 1) > kNearlyTooLarge ? 1 / kNearlyTooLarge : 1;
  CompensatedSum apart;
  CompensatedSum all;
  for (std::size_t low = 0, high = count - 1; low < high; ++low, --high) {
    const double lowNumber = numberAt(low) * unit;
    const double highNumber = numberAt(high) * unit;
    apart.Add(static_cast<double>(high - low) * (highNumber - lowNumber));
    all.Add(lowNumber);
    all.Add(highNumber);
  }
  if (count % 2 != 0) all.Add(numberAt(count / 2) * unit);
  return apart.Value() / (static_cast<double>(count) * all.Value());
}

}  // namespace

void Functions::GiniCoeff(CXlOper& result, const CXlArgument& rangeArray) {
  result.SetError(xlerrValue);
  FoundNumbers numbers = ReadNumbers(TableView::OfUsedRows(rangeArray.Value()));
  if (numbers.error) return result.SetError(*numbers.error);
  if (numbers.anyNegative) return result.SetError(xlerrNum);
  Sort(numbers.words);
  const bool isNothing = numbers.words.empty() || numbers.words[numbers.words.size() - 1] == 0;
  if (isNothing) return result.SetError(xlerrDiv0);
  result.SetNumber(GiniOf(numbers.words));
}

}  // namespace quillmere::series
