// What the functions that cut and extend arrays cost beside a plain copy of as many cells and texts as their results
// have into fresh memory. A benchmark's argument is the number of rows of a table of five columns (number, text, text,
// number, boolean).
#include <benchmark/benchmark.h>

#include <memory>
#include <utility>

#include "bench/excel_answers.h"
#include "bench/stack_call.h"
#include "exports.h"

namespace quillmere {
namespace {

constexpr int kColumns = 5;
constexpr int kTextColumns = 2;

Blocks MixedTable(int rows) {
  Blocks blocks;
  blocks.push_back(std::make_unique<HostArray>(rows, kColumns));
  HostArray& table = *blocks.back();
  for (int at = 0; at < rows * kColumns; ++at) {
    const int column = at % kColumns;
    if (column == 1 || column == 2)
      table.SetText(at, CountedText(XTEXT('K'), at * std::int64_t{7919} % 9'999'991));
    else
      table.cells[at] = column == 4 ? BooleanCell(at % 2 == 0) : NumberCell(at * 0.25);
  }
  return blocks;
}

void AllSizes(benchmark::internal::Benchmark* benchmark) {
  for (const int rows : {1'000, 100'000, 1'000'000}) benchmark->Arg(rows);
  benchmark->Unit(benchmark::kMillisecond);
}

/// The floor: cells and texts copied one by one, nothing checked, into memory never touched before.
void PlainTableCopy(benchmark::State& state) {
  const auto rows = static_cast<int>(state.range(0));
  const Blocks table = MixedTable(rows);
  for (auto _ : state) {
    const auto cells = std::make_unique_for_overwrite<XLOPER12[]>(std::size_t{kColumns} * rows);
    const auto texts = std::make_unique_for_overwrite<XCHAR[]>(std::size_t{kTextColumns} * 9 * rows);
    CopyPlainly(table, cells.get(), texts.get());
    benchmark::DoNotOptimize(cells.get());
    benchmark::DoNotOptimize(texts.get());
  }
}
BENCHMARK(PlainTableCopy)->Apply(AllSizes);

/// The table four times, from a quarter of the rows: twice down, twice across.
void RepeatTable(benchmark::State& state) {
  const Blocks table = MixedTable(static_cast<int>(state.range(0)) / 4);
  const XLOPER12 two = NumberCell(2);
  for (auto _ : state) CallAsExcel(&REPEAT_12, &table[0]->value, two, two);
}
BENCHMARK(RepeatTable)->Apply(AllSizes);

void ReverseTable(benchmark::State& state, bool rows, bool columns) {
  const Blocks table = MixedTable(static_cast<int>(state.range(0)));
  const XLOPER12 reverseRows = BooleanCell(rows);
  const XLOPER12 reverseColumns = BooleanCell(columns);
  for (auto _ : state) CallAsExcel(&REVERSE_ARRAY_12, &table[0]->value, reverseRows, reverseColumns);
}
BENCHMARK_CAPTURE(ReverseTable, Rows, true, false)->Apply(AllSizes);
BENCHMARK_CAPTURE(ReverseTable, Columns, false, true)->Apply(AllSizes);
BENCHMARK_CAPTURE(ReverseTable, Both, true, true)->Apply(AllSizes);

/// A row replaced in the middle: two cuts of whole rows.
void SpliceTableRows(benchmark::State& state) {
  const auto rows = static_cast<int>(state.range(0));
  const Blocks table = MixedTable(rows);
  const XLOPER12 after = NumberCell(rows / 2);
  const XLOPER12 one = NumberCell(1);
  for (auto _ : state) CallAsExcel(&SPLICEROWS_12, &table[0]->value, after, one, one, nullptr);
}
BENCHMARK(SpliceTableRows)->Apply(AllSizes);

/// A column replaced by another.
void SpliceTableColumns(benchmark::State& state) {
  const auto rows = static_cast<int>(state.range(0));
  const Blocks table = MixedTable(rows);
  HostArray column(rows, 1);
  for (int row = 0; row < rows; ++row) column.cells[row] = NumberCell(row);
  const XLOPER12 three = NumberCell(3);
  const XLOPER12 one = NumberCell(1);
  for (auto _ : state) CallAsExcel(&SPLICECOLS_12, &table[0]->value, three, one, &column.value, nullptr);
}
BENCHMARK(SpliceTableColumns)->Apply(AllSizes);

/// A cell replaced.
void SpliceTableCells(benchmark::State& state) {
  const Blocks table = MixedTable(static_cast<int>(state.range(0)));
  const XLOPER12 one = NumberCell(1);
  const auto call = [&]<class... Rest>(Rest... left) {
    CallAsExcel(&SPLICECELLS_12, &table[0]->value, one, one, one, left...);
  };
  for (auto _ : state)
    call(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
}
BENCHMARK(SpliceTableCells)->Apply(AllSizes);

/// A column of zeros beside the others.
void PadTable(benchmark::State& state) {
  InstallExcelAnswers();
  const auto rows = static_cast<int>(state.range(0));
  const Blocks table = MixedTable(rows);
  const XLOPER12 columns = NumberCell(kColumns + 1);
  for (auto _ : state) CallAsExcel(&PAD_ARRAY_12, nullptr, &table[0]->value, nullptr, columns);
}
BENCHMARK(PadTable)->Apply(AllSizes);

/// Five columns of values under five texts, beside a text: a fifth as many rows give as many of three cells.
void UnpivotTable(benchmark::State& state) {
  const auto rows = static_cast<int>(state.range(0)) / 5 + 1;
  HostArray table(rows, 6);
  for (int row = 0; row < rows; ++row) {
    for (int column = 0; column < 6; ++column) {
      if (row == 0 || column == 0)
        table.SetText(std::size_t{6} * row + column, CountedText(XTEXT('K'), row + column));
      else
        table.At(row, column) = NumberCell(row);
    }
  }
  for (auto _ : state) CallAsExcel(&UNPIVOT_12, &table.value, nullptr, nullptr, nullptr);
}
BENCHMARK(UnpivotTable)->Apply(AllSizes);

/// All rows by their numbers, the last first: the numbers are read as well, as many as there are rows.
void SliceEveryRow(benchmark::State& state, bool inEvenSteps) {
  const auto rows = static_cast<int>(state.range(0));
  const Blocks table = MixedTable(rows);
  HostArray numbers(rows, 1);
  for (int row = 0; row < rows; ++row) numbers.cells[row] = NumberCell(rows - row);
  if (!inEvenSteps) std::swap(numbers.cells[0], numbers.cells[rows - 1]);
  for (auto _ : state) CallAsExcel(&SLICES_12, &table[0]->value, &numbers.value, nullptr);
}
BENCHMARK_CAPTURE(SliceEveryRow, Backwards, true)->Apply(AllSizes);
BENCHMARK_CAPTURE(SliceEveryRow, Anyhow, false)->Apply(AllSizes);

/// The columns the other way round, by five numbers.
void SliceColumns(benchmark::State& state) {
  const Blocks table = MixedTable(static_cast<int>(state.range(0)));
  HostArray numbers(1, kColumns);
  for (int column = 0; column < kColumns; ++column) numbers.cells[column] = NumberCell(kColumns - column);
  for (auto _ : state) CallAsExcel(&SLICES_12, &table[0]->value, nullptr, &numbers.value);
}
BENCHMARK(SliceColumns)->Apply(AllSizes);

/// A row by a label that stands far down, which all labels are held against.
void SliceByLabel(benchmark::State& state) {
  const auto rows = static_cast<int>(state.range(0));
  HostArray table(rows, 2);
  for (int row = 0; row < rows; ++row) {
    table.SetText(std::size_t{2} * row, CountedText(XTEXT('k'), row));
    table.At(row, 1) = NumberCell(row);
  }
  HostArray label(1, 1);
  label.SetText(0, CountedText(XTEXT('K'), rows - 1));
  for (auto _ : state) CallAsExcel(&SLICES_12, &table.value, &label.value, nullptr);
}
BENCHMARK(SliceByLabel)->Apply(AllSizes);

/// A column more, of zeros.
void ResizeTable(benchmark::State& state) {
  InstallExcelAnswers();
  const Blocks table = MixedTable(static_cast<int>(state.range(0)));
  const XLOPER12 columns = NumberCell(kColumns + 1);
  for (auto _ : state) CallAsExcel(&RESIZE_12, &table[0]->value, nullptr, columns, nullptr, nullptr, nullptr);
}
BENCHMARK(ResizeTable)->Apply(AllSizes);

void CountRows(benchmark::State& state) {
  const XLOPER12 count = NumberCell(static_cast<double>(state.range(0)));
  for (auto _ : state) CallAsExcel(&VECTOR_12, count, nullptr, nullptr, nullptr);
}
BENCHMARK(CountRows)->Apply(AllSizes);

}  // namespace
}  // namespace quillmere
