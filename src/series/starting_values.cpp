#include "series/starting_values.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <vector>

#include "table/compensated_sum.h"

namespace quillmere::series {
namespace {

/// Hands over the numbers of each series at places from `first` to before `end`: `take(series, numbers)`. The part that
/// is read next begins `ahead` places behind this one.
template <class Take>
void ReadPart(const SeriesTable& table, const CXlCells& cells, const SeriesShape& shape, std::int32_t first,
              std::int32_t end, std::int32_t ahead, ScratchArray<double>& numbers, const Take& take) {
  const std::int32_t count = end - first;
  for (std::int32_t series = 0; series < shape.Count(); ++series) {
    const CellLine line = shape.isDown ? CellLine{&cells.At(first, series), count, cells.columns}
                                       : CellLine{&cells.At(series, first), count, 1};
    ReadNumbers(line, table.Name(), ahead * line.stride, numbers.data());
    take(static_cast<std::size_t>(series), std::span<double>(numbers.data(), static_cast<std::size_t>(count)));
  }
}

}  // namespace

ScratchArray<double> FirstAverages(const SeriesTable& table, const SeriesShape& shape, std::int32_t count) {
  const CXlOper values = table.View().ReadAll();
  const std::int32_t tile = shape.TileLength();
  ScratchArray<double> numbers(static_cast<std::size_t>(tile));
  ScratchArray<double> averages(static_cast<std::size_t>(shape.Count()));
  // What overflows in the sum alone is there when the numbers are scaled.
  for (const double scale : {1.0, kScale}) {
    std::vector<CompensatedSum> sums(averages.size());
    for (std::int32_t first = 0; first < count; first += tile)
      ReadPart(table, values.Cells(), shape, first, std::min(first + tile, count), tile, numbers,
               [&](std::size_t series, std::span<double> some) {
                 for (double& number : some) number *= scale;
                 sums[series].Add(some);
               });
    for (std::size_t series = 0; series < sums.size(); ++series)
      averages[series] = sums[series].Value() / count / scale;
    if (std::ranges::all_of(averages, [](double average) { return std::isfinite(average); })) break;
  }
  return averages;
}

ScratchArray<double> Backcasts(const SeriesTable& table, const SeriesShape& shape, double alpha) {
  const CXlOper values = table.View().ReadAll();
  const std::int32_t tile = shape.TileLength();
  ScratchArray<double> numbers(static_cast<std::size_t>(tile));
  ScratchArray<double> averages(static_cast<std::size_t>(shape.Count()));
  for (std::int32_t end = shape.Length(); end > 0; end -= tile)
    ReadPart(table, values.Cells(), shape, std::max(end - tile, 0), end, -tile, numbers,
             [&](std::size_t series, std::span<double> some) {
               double average = end == shape.Length() ? some.back() : averages[series];
               for (std::size_t at = some.size(); at-- > 0;) average = alpha * some[at] + (1 - alpha) * average;
               averages[series] = average;
             });
  return averages;
}

}  // namespace quillmere::series
