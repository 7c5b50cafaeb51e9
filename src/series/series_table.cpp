#include "series/series_table.h"

#include <emmintrin.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "series/number_pair.h"
#include "series/table_numbers.h"
#include "table/row_blocks.h"

namespace quillmere::series {
namespace {

/// As ReadNumbers, whatever the cells are.
bool ReadAny(const CellLine& cells, XStringView name, double* to) {
  bool isLarge = false;
  for (std::int32_t at = 0; at < cells.count; ++at) {
    to[at] = NumberIn(cells.At(at), name);
    isLarge |= std::fabs(to[at]) > kMostUnscaled;
  }
  return isLarge;
}

}  // namespace

bool ReadNumbers(const CellLine& cells, XStringView name, std::ptrdiff_t ahead, double* to) {
  // Nearly all are plain numbers: two at a time are taken for such, and what speaks against any is gathered.
  constexpr Bits kAllButSign = {std::numeric_limits<long long>::max(), std::numeric_limits<long long>::max()};
  constexpr Pair kMost = {kMostUnscaled, kMostUnscaled};
  std::uint32_t others = 0;
  Bits large{};
  const auto look = [&](const XLOPER12& first, const XLOPER12& second) {
    PrefetchFarNeighbour(&first + ahead);
    PrefetchFarNeighbour(&second + ahead);
    others |= (TypeOf(first) ^ xltypeNum) | (TypeOf(second) ^ xltypeNum);
    const Pair numbers = {first.val.num, second.val.num};
    const Pair sizes = reinterpret_cast<Pair>(reinterpret_cast<Bits>(numbers) & kAllButSign);
    // Not by an operator, which GCC 12 fails to translate under ThreadSanitizer.
    large |= reinterpret_cast<Bits>(_mm_cmpnle_pd(sizes, kMost));
    return numbers;
  };
  std::int32_t at = 0;
  for (; at + 1 < cells.count; at += 2) StorePair(to + at, look(cells.At(at), cells.At(at + 1)));
  if (at < cells.count) to[at] = look(cells.At(at), cells.At(at))[0];
  return (others != 0 || (large[0] | large[1]) != 0) && ReadAny(cells, name, to);
}

SeriesTable::SeriesTable(const CXlArgument& argument)
    : view_(TableView::OfUsedRows(argument.Value())), name_(argument.Name()) {
  if (view_.Rows() != 1 || view_.Columns() != 1) return;
  onlyCell_ = view_.ReadCell(0, 0);
  if (onlyCell_.IsEmpty()) throw CXlErrorException(xlerrValue);
  view_ = TableView(onlyCell_);
}

void SeriesTable::CheckNumbers() const {
  std::array<double, 256> numbers;
  for (RowBlocks blocks(view_); blocks.Next();) {
    // The columns of a block stand beside each other.
    const XLOPER12* const first = &blocks.At(0, 0);
    const std::int64_t count = std::int64_t{blocks.Rows()} * view_.Columns();
    for (std::int64_t at = 0; at < count; at += numbers.size()) {
      const auto some = static_cast<std::int32_t>(std::min<std::int64_t>(numbers.size(), count - at));
      ReadNumbers({first + at, some, 1}, name_, some, numbers.data());
    }
  }
}

}  // namespace quillmere::series
