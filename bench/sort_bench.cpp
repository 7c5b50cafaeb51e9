// What sorts cost by what stands in their keys, and by how it comes, beside the sort of rows that one would write by
// hand. A benchmark's argument is the number of rows; row numbers are asked for, so that no result is painted, but
// where the name says Rows.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <utility>
#include <vector>

#include "bench/excel_answers.h"
#include "bench/excel_call.h"
#include "bench/host_array.h"
#include "exports.h"
#include "frame/text/fold_case.h"

namespace quillmere {
namespace {

/// What the cells of a key column are.
enum class Keys {
  kNumbers,        ///< all different, in no order
  kAscending,      ///< the same, in order
  kDescending,     ///< and the other way
  kEqual,          ///< one number
  kSkewed,         ///< mostly one number, some from a million
  kFewNumbers,     ///< one of ten
  kTexts,          ///< all different, of a letter and seven digits
  kGroups,         ///< one of a thousand such texts
  kLongBeginning,  ///< all different behind thirty equal letters
  kLateLetter,     ///< thirty equal letters, then one of two
};

constexpr std::size_t kLongText = 40;

std::vector<XCHAR> LongText(std::int64_t number, int digits) {
  const std::vector<XCHAR> tail = CountedText(XTEXT('x'), number);
  std::vector<XCHAR> text(31, XTEXT('x'));
  text.insert(text.end(), tail.end() - digits, tail.end());
  text[0] = static_cast<XCHAR>(text.size() - 1);
  return text;
}

HostArray MakeTable(std::int64_t rows, Keys keys, int columns) {
  HostArray table(static_cast<int>(rows), columns, kLongText);
  std::mt19937 random(1);
  std::vector<int> numbers(static_cast<std::size_t>(rows));
  std::iota(numbers.begin(), numbers.end(), 0);
  if (keys == Keys::kDescending) std::ranges::reverse(numbers);
  if (keys != Keys::kAscending && keys != Keys::kDescending) std::ranges::shuffle(numbers, random);
  for (std::size_t cell = 0; cell < table.cells.size(); ++cell) {
    const int number = numbers[cell / static_cast<std::size_t>(columns)];
    switch (keys) {
      case Keys::kEqual:
        table.cells[cell] = NumberCell(7);
        break;
      case Keys::kSkewed:
        table.cells[cell] = NumberCell(random() % 100 == 0 ? number : 7);
        break;
      case Keys::kFewNumbers:
        table.cells[cell] = NumberCell(static_cast<int>(random() % 10));
        break;
      case Keys::kTexts:
        table.SetText(cell, CountedText(XTEXT('K'), number));
        break;
      case Keys::kGroups:
        table.SetText(cell, CountedText(XTEXT('g'), static_cast<int>(random() % 1'000)));
        break;
      case Keys::kLongBeginning:
        table.SetText(cell, LongText(number, 7));
        break;
      case Keys::kLateLetter:
        table.SetText(cell, LongText(number % 2, 1));
        break;
      default:
        table.cells[cell] = NumberCell(number);
    }
  }
  return table;
}

template <class Export>
void Sort(benchmark::State& state, Export function, Keys keys, int columns) {
  InstallExcelAnswers();
  const HostArray table = MakeTable(state.range(0), keys, columns);
  // Without sort columns every column is one.
  for (auto _ : state) [&]<std::size_t... at>(std::index_sequence<at...>) {
      CallAsExcel(function, table.value, (static_cast<void>(at), nullptr)...);
    }
  (std::make_index_sequence<15>());
}

/// The sort by hand: row numbers, and a comparison of cells.
void PlainSort(benchmark::State& state, Keys keys, int columns) {
  const HostArray table = MakeTable(state.range(0), keys, columns);
  const auto isLess = [&](std::int32_t a, std::int32_t b) {
    for (int column = 0; column < columns; ++column) {
      const XLOPER12& cellA = table.cells[static_cast<std::size_t>(a) * columns + column];
      const XLOPER12& cellB = table.cells[static_cast<std::size_t>(b) * columns + column];
      const int order = IsTextCell(cellA)               ? CompareExact(TextOf(cellA), TextOf(cellB))
                        : cellA.val.num < cellB.val.num ? -1
                                                        : cellA.val.num > cellB.val.num;
      if (order != 0) return order < 0;
    }
    return false;
  };
  for (auto _ : state) {
    std::vector<std::int32_t> rows(static_cast<std::size_t>(state.range(0)));
    std::iota(rows.begin(), rows.end(), 0);
    std::ranges::stable_sort(rows, isLess);
    benchmark::DoNotOptimize(rows.data());
  }
}

void AllSizes(benchmark::internal::Benchmark* benchmark) {
  for (const int rows : {1'000, 100'000, 1'000'000}) benchmark->Arg(rows);
  benchmark->Unit(benchmark::kMicrosecond);
}

BENCHMARK_CAPTURE(Sort, Numbers, &VSORTB_INDEX_12, Keys::kNumbers, 1)->Apply(AllSizes);
BENCHMARK_CAPTURE(PlainSort, Numbers, Keys::kNumbers, 1)->Apply(AllSizes);
BENCHMARK_CAPTURE(Sort, Ascending, &VSORTB_INDEX_12, Keys::kAscending, 1)->Apply(AllSizes);
BENCHMARK_CAPTURE(Sort, Descending, &VSORTB_INDEX_12, Keys::kDescending, 1)->Apply(AllSizes);
BENCHMARK_CAPTURE(Sort, Equal, &VSORTB_INDEX_12, Keys::kEqual, 1)->Apply(AllSizes);
BENCHMARK_CAPTURE(Sort, Skewed, &VSORTB_INDEX_12, Keys::kSkewed, 1)->Apply(AllSizes);
BENCHMARK_CAPTURE(Sort, NumberRows, &VSORTB_12, Keys::kNumbers, 3)->Apply(AllSizes);
BENCHMARK_CAPTURE(Sort, ThreeKeys, &VSORTB_INDEX_12, Keys::kFewNumbers, 3)->Apply(AllSizes);
BENCHMARK_CAPTURE(PlainSort, ThreeKeys, Keys::kFewNumbers, 3)->Apply(AllSizes);
BENCHMARK_CAPTURE(Sort, FifteenKeys, &VSORTB_INDEX_12, Keys::kFewNumbers, 15)->Apply(AllSizes);
BENCHMARK_CAPTURE(PlainSort, FifteenKeys, Keys::kFewNumbers, 15)->Apply(AllSizes);
BENCHMARK_CAPTURE(Sort, FifteenSkewed, &VSORTB_INDEX_12, Keys::kSkewed, 15)->Apply(AllSizes);
BENCHMARK_CAPTURE(Sort, FifteenEqual, &VSORTB_INDEX_12, Keys::kEqual, 15)->Apply(AllSizes);
BENCHMARK_CAPTURE(Sort, Texts, &VSORTB_INDEX_12, Keys::kTexts, 1)->Apply(AllSizes);
BENCHMARK_CAPTURE(PlainSort, Texts, Keys::kTexts, 1)->Apply(AllSizes);
BENCHMARK_CAPTURE(Sort, Groups, &VSORTB_INDEX_12, Keys::kGroups, 1)->Apply(AllSizes);
BENCHMARK_CAPTURE(Sort, FifteenGroups, &VSORTB_INDEX_12, Keys::kGroups, 15)->Apply(AllSizes);
BENCHMARK_CAPTURE(Sort, LongBeginning, &VSORTB_INDEX_12, Keys::kLongBeginning, 1)->Apply(AllSizes);
BENCHMARK_CAPTURE(PlainSort, LongBeginning, Keys::kLongBeginning, 1)->Apply(AllSizes);
BENCHMARK_CAPTURE(Sort, LateLetter, &VSORTB_INDEX_12, Keys::kLateLetter, 1)->Apply(AllSizes);
BENCHMARK_CAPTURE(Sort, CollatedTexts, &VSORTC_INDEX_12, Keys::kTexts, 1)->Apply(AllSizes);
BENCHMARK_CAPTURE(Sort, CollatedGroups, &VSORTC_INDEX_12, Keys::kGroups, 1)->Apply(AllSizes);
BENCHMARK_CAPTURE(Sort, CollatedLongBeginning, &VSORTC_INDEX_12, Keys::kLongBeginning, 1)->Apply(AllSizes);

}  // namespace
}  // namespace quillmere
