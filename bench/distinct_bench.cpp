// What distinct lists cost by what the cells hold, beside the map that one would write by hand. A benchmark's argument
// is the number of rows.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <numeric>
#include <random>
#include <string>
#include <unordered_map>
#include <vector>

#include "bench/excel_answers.h"
#include "bench/excel_call.h"
#include "bench/host_array.h"
#include "exports.h"
#include "frame/text/fold_case.h"

namespace quillmere {
namespace {

/// What the cells of a column are.
enum class Cells {
  kEqual,          ///< one text of forty letters
  kGroups,         ///< one of a thousand texts of 5 to 40 letters
  kNumbers,        ///< all different, in no order
  kTexts,          ///< all different, of a letter and seven digits
  kLongBeginning,  ///< all different behind thirty equal letters
  kHundred,        ///< one of a hundred numbers
  kFlags,          ///< TRUE or FALSE
};

constexpr std::size_t kLongText = 40;

std::vector<XCHAR> LongText(std::size_t letters, int number, int digits) {
  const std::vector<XCHAR> counted = CountedText(XTEXT('x'), number);
  std::vector<XCHAR> text(letters + 1, XTEXT('x'));
  text.insert(text.end(), counted.end() - digits, counted.end());
  text[0] = static_cast<XCHAR>(text.size() - 1);
  return text;
}

HostArray MakeTable(std::int64_t rows, const std::vector<Cells>& columns) {
  HostArray table(static_cast<int>(rows), static_cast<int>(columns.size()), kLongText);
  std::vector<int> numbers(static_cast<std::size_t>(rows));
  std::iota(numbers.begin(), numbers.end(), 0);
  std::mt19937 random(1);
  std::ranges::shuffle(numbers, random);
  for (std::size_t cell = 0; cell < table.cells.size(); ++cell) {
    const int number = numbers[cell / columns.size()];
    const int group = static_cast<int>(random() % 1'000);
    switch (columns[cell % columns.size()]) {
      case Cells::kEqual:
        table.SetText(cell, LongText(kLongText, 0, 0));
        break;
      case Cells::kGroups:
        table.SetText(cell, LongText(static_cast<std::size_t>(2 + group * 7 % 36), group, 3));
        break;
      case Cells::kNumbers:
        table.cells[cell] = NumberCell(number);
        break;
      case Cells::kTexts:
        table.SetText(cell, CountedText(XTEXT('K'), number));
        break;
      case Cells::kLongBeginning:
        table.SetText(cell, LongText(30, number, 7));
        break;
      case Cells::kHundred:
        table.cells[cell] = NumberCell(group % 100);
        break;
      case Cells::kFlags:
        table.cells[cell] = BooleanCell(group % 2 == 0);
        break;
    }
  }
  return table;
}

void Count(benchmark::State& state, Cells cells) {
  const HostArray table = MakeTable(state.range(0), {cells});
  for (auto _ : state) CallAsExcel(&COUNTDISTINCTS_12, table.value, nullptr, nullptr, nullptr);
}

void ListWithCounts(benchmark::State& state, Cells cells) {
  InstallExcelAnswers();
  const HostArray table = MakeTable(state.range(0), {cells});
  for (auto _ : state) CallAsExcel(&LISTDISTINCTS_COUNT_12, table.value, nullptr, nullptr, nullptr, nullptr, nullptr);
}

/// By items and by nothing else, or as they come.
void ListRows(benchmark::State& state, const std::vector<Cells>& columns, int order) {
  InstallExcelAnswers();
  const HostArray table = MakeTable(state.range(0), columns);
  for (auto _ : state)
    CallAsExcel(&LISTDISTINCTS_12, table.value, nullptr, nullptr, nullptr, NumberCell(order), nullptr);
}

/// What tells a cell of these tables apart.
std::u16string PlainKey(const XLOPER12& cell) {
  if (!IsTextCell(cell)) {
    const auto bits = IsNumberCell(cell) ? std::bit_cast<std::uint64_t>(cell.val.num) : std::uint64_t(cell.val.xbool);
    return {static_cast<char16_t>(cell.xltype), static_cast<char16_t>(bits >> 48), static_cast<char16_t>(bits >> 32),
            static_cast<char16_t>(bits >> 16), static_cast<char16_t>(bits)};
  }
  std::u16string text(TextOf(cell));
  for (char16_t& unit : text) unit = FoldUnit(unit);
  return text;
}

void PlainCounts(benchmark::State& state, const std::vector<Cells>& columns) {
  const HostArray table = MakeTable(state.range(0), columns);
  for (auto _ : state) {
    std::unordered_map<std::u16string, std::int32_t> counts;
    for (std::size_t cell = 0; cell < table.cells.size(); cell += columns.size()) {
      std::u16string key = PlainKey(table.cells[cell]);
      for (std::size_t column = 1; column < columns.size(); ++column) key += PlainKey(table.cells[cell + column]);
      ++counts[key];
    }
    benchmark::DoNotOptimize(counts.size());
  }
}

void PlainNumbers(benchmark::State& state) {
  const HostArray table = MakeTable(state.range(0), {Cells::kNumbers});
  for (auto _ : state) {
    std::unordered_map<double, std::int32_t> counts;
    for (const XLOPER12& cell : table.cells) ++counts[cell.val.num];
    benchmark::DoNotOptimize(counts.size());
  }
}

void AllSizes(benchmark::internal::Benchmark* benchmark) {
  for (const int rows : {1'000, 100'000, 1'000'000}) benchmark->Arg(rows);
  benchmark->Unit(benchmark::kMicrosecond);
}

const std::vector<Cells> kThreeColumns = {Cells::kGroups, Cells::kHundred, Cells::kFlags};

BENCHMARK_CAPTURE(ListWithCounts, Groups, Cells::kGroups)->Apply(AllSizes);
BENCHMARK_CAPTURE(PlainCounts, Groups, {Cells::kGroups})->Apply(AllSizes);
BENCHMARK_CAPTURE(ListRows, ThreeColumns, kThreeColumns, 0)->Apply(AllSizes);
BENCHMARK_CAPTURE(ListRows, ThreeColumnsSorted, kThreeColumns, 1)->Apply(AllSizes);
BENCHMARK_CAPTURE(PlainCounts, ThreeColumns, kThreeColumns)->Apply(AllSizes);
BENCHMARK_CAPTURE(Count, Numbers, Cells::kNumbers)->Apply(AllSizes);
BENCHMARK(PlainNumbers)->Apply(AllSizes);
BENCHMARK_CAPTURE(Count, Texts, Cells::kTexts)->Apply(AllSizes);
BENCHMARK_CAPTURE(PlainCounts, Texts, {Cells::kTexts})->Apply(AllSizes);
BENCHMARK_CAPTURE(Count, Equal, Cells::kEqual)->Apply(AllSizes);
BENCHMARK_CAPTURE(Count, LongBeginning, Cells::kLongBeginning)->Apply(AllSizes);
BENCHMARK_CAPTURE(ListRows, AllDifferent, {Cells::kNumbers, Cells::kTexts, Cells::kGroups}, 0)->Apply(AllSizes);

}  // namespace
}  // namespace quillmere
