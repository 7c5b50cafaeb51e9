// What the logical functions cost by what their cells are, beside the loop that one would write by hand. A benchmark's
// argument is the number of rows; every table has three columns, which Cells gets one by one.
#include <benchmark/benchmark.h>

#include <random>
#include <utility>
#include <vector>

#include "bench/excel_answers.h"
#include "bench/excel_call.h"
#include "bench/host_array.h"
#include "exports.h"
#include "table/truth_value.h"

namespace quillmere {
namespace {

/// What the cells are.
enum class Cells {
  kFlags,    ///< TRUE or FALSE
  kTrue,     ///< TRUE
  kNumbers,  ///< 0 or another number
  kMixed,    ///< any of these
  kTexts,    ///< numbers of seven digits, as texts
};

constexpr int kColumns = 3;

HostArray MakeTable(std::int64_t rows, Cells cells, int columns, unsigned seed = 1) {
  HostArray table(static_cast<int>(rows), columns);
  std::mt19937 random(seed);
  for (std::size_t cell = 0; cell < table.cells.size(); ++cell) {
    const bool truth = cells == Cells::kTrue || random() % 4 != 0;
    const bool isNumber = cells == Cells::kNumbers || (cells == Cells::kMixed && random() % 2 != 0);
    if (cells == Cells::kTexts)
      table.SetText(cell, CountedText(XTEXT('0'), static_cast<std::int64_t>(cell) + 1));
    else
      table.cells[cell] = isNumber ? NumberCell(truth ? 2.5 : 0) : BooleanCell(truth);
  }
  return table;
}

/// Calls a function of 28 arguments with the first of them.
template <class Export, class... Given>
void CallLogical(Export function, const Given&... given) {
  [&]<std::size_t... at>(std::index_sequence<at...>) {
    CallAsExcel(function, given..., (static_cast<void>(at), nullptr)...);
  }
  (std::make_index_sequence<28 - sizeof...(Given)>());
}

template <class Export>
void Columns(benchmark::State& state, Export function, Cells cells) {
  InstallExcelAnswers();
  const HostArray a = MakeTable(state.range(0), cells, 1, 1);
  const HostArray b = MakeTable(state.range(0), cells, 1, 2);
  const HostArray c = MakeTable(state.range(0), cells, 1, 3);
  for (auto _ : state) CallLogical(function, a.value, b.value, c.value);
}

template <class Export>
void Table(benchmark::State& state, Export function, Cells cells) {
  InstallExcelAnswers();
  const HostArray table = MakeTable(state.range(0), cells, kColumns);
  for (auto _ : state) CallLogical(function, table.value);
}

template <class Export>
void Reference(benchmark::State& state, Export function) {
  InstallExcelAnswers();
  const CXlOper table = CXlOper::Reference(XLREF12{0, static_cast<RW>(state.range(0)) - 1, 0, kColumns - 1});
  for (auto _ : state) CallLogical(function, table);
}

void IfError(benchmark::State& state, Cells cells) {
  InstallExcelAnswers();
  const HostArray table = MakeTable(state.range(0), cells, kColumns);
  for (auto _ : state) CallAsExcel(&IFERRORX_12, table.value, NumberCell(0), nullptr, nullptr);
}

bool IsTrue(const XLOPER12& cell) { return TruthOf(cell) == TruthValue::kTrue; }

void PlainCells(benchmark::State& state, Cells cells) {
  const HostArray a = MakeTable(state.range(0), cells, 1, 1);
  const HostArray b = MakeTable(state.range(0), cells, 1, 2);
  const HostArray c = MakeTable(state.range(0), cells, 1, 3);
  std::vector<XLOPER12> results(a.cells.size());
  for (auto _ : state) {
    for (std::size_t row = 0; row < results.size(); ++row)
      results[row] = BooleanCell(IsTrue(a.cells[row]) && IsTrue(b.cells[row]) && IsTrue(c.cells[row]));
    benchmark::DoNotOptimize(results.data());
  }
}

void PlainRows(benchmark::State& state, Cells cells) {
  const HostArray table = MakeTable(state.range(0), cells, kColumns);
  std::vector<XLOPER12> results(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    const XLOPER12* row = table.cells.data();
    for (XLOPER12& result : results) {
      result = BooleanCell(IsTrue(row[0]) && IsTrue(row[1]) && IsTrue(row[2]));
      row += kColumns;
    }
    benchmark::DoNotOptimize(results.data());
  }
}

void PlainAll(benchmark::State& state, Cells cells) {
  const HostArray table = MakeTable(state.range(0), cells, kColumns);
  for (auto _ : state) {
    bool all = true;
    for (const XLOPER12& cell : table.cells) all = all && IsTrue(cell);
    benchmark::DoNotOptimize(all);
  }
}

void AllSizes(benchmark::internal::Benchmark* benchmark) {
  for (const int rows : {1'000, 100'000, 1'000'000}) benchmark->Arg(rows);
  benchmark->Unit(benchmark::kMicrosecond);
}

BENCHMARK_CAPTURE(Columns, CellsOfFlags, &AND_CELLS_12, Cells::kFlags)->Apply(AllSizes);
BENCHMARK_CAPTURE(PlainCells, Flags, Cells::kFlags)->Apply(AllSizes);
BENCHMARK_CAPTURE(Columns, CellsOfNumbers, &OR_CELLS_12, Cells::kNumbers)->Apply(AllSizes);
BENCHMARK_CAPTURE(Columns, CellsOfMixed, &AND_CELLS_12, Cells::kMixed)->Apply(AllSizes);
BENCHMARK_CAPTURE(PlainCells, Mixed, Cells::kMixed)->Apply(AllSizes);
BENCHMARK_CAPTURE(Columns, CellsOfTexts, &AND_CELLS_12, Cells::kTexts)->Apply(AllSizes);
BENCHMARK_CAPTURE(PlainCells, Texts, Cells::kTexts)->Apply(AllSizes);
BENCHMARK_CAPTURE(Table, RowsOfFlags, &AND_ROWS_12, Cells::kFlags)->Apply(AllSizes);
BENCHMARK_CAPTURE(PlainRows, Flags, Cells::kFlags)->Apply(AllSizes);
BENCHMARK_CAPTURE(Table, ColumnsOfTrue, &AND_COLS_12, Cells::kTrue)->Apply(AllSizes);
BENCHMARK_CAPTURE(Table, AllOfTrue, &ALL_12, Cells::kTrue)->Apply(AllSizes);
BENCHMARK_CAPTURE(PlainAll, True, Cells::kTrue)->Apply(AllSizes);
BENCHMARK_CAPTURE(Reference, AllOfReference, &ALL_12)->Apply(AllSizes);
BENCHMARK_CAPTURE(Reference, RowsOfReference, &AND_ROWS_12)->Apply(AllSizes);
BENCHMARK_CAPTURE(IfError, Numbers, Cells::kNumbers)->Apply(AllSizes);
BENCHMARK_CAPTURE(IfError, Texts, Cells::kTexts)->Apply(AllSizes);

}  // namespace
}  // namespace quillmere
