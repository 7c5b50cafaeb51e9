// What aggregates cost beside a plain loop that adds up the same cells, nothing checked and nothing compensated: five
// columns of numbers in no order. A benchmark's argument is the number of rows; the rate is that at which cells are
// read.
#include <benchmark/benchmark.h>

#include <array>
#include <memory>
#include <random>
#include <vector>

#include "bench/excel_answers.h"
#include "bench/excel_call.h"
#include "bench/host_array.h"
#include "exports.h"

namespace quillmere {
namespace {

constexpr int kColumns = 5;

/// Numbers, or where it says so texts and empty cells in every other place.
HostArray MakeTable(std::int64_t rows, bool isMixed) {
  HostArray table(static_cast<int>(rows), kColumns);
  std::mt19937 random(1);
  std::uniform_real_distribution<double> number(-1, 1);
  for (std::size_t at = 0; at < table.cells.size(); ++at) {
    const std::uint32_t kind = isMixed ? random() % 4 : 0;
    if (kind < 2)
      table.cells[at] = NumberCell(number(random));
    else if (kind == 2)
      table.SetText(at, CountedText(XTEXT('t'), static_cast<std::int64_t>(at)));
  }
  return table;
}

void CountBytes(benchmark::State& state) {
  state.SetBytesProcessed(state.iterations() * state.range(0) * kColumns * static_cast<std::int64_t>(sizeof(XLOPER12)));
}

void AddColumns(benchmark::State& state) {
  const HostArray table = MakeTable(state.range(0), false);
  for (auto _ : state) {
    std::array<double, kColumns> sums{};
    for (std::size_t at = 0; at < table.cells.size(); at += kColumns)
      for (std::size_t column = 0; column < kColumns; ++column) sums[column] += table.cells[at + column].val.num;
    benchmark::DoNotOptimize(sums);
  }
  CountBytes(state);
}

void AddRows(benchmark::State& state) {
  const HostArray table = MakeTable(state.range(0), false);
  const auto sums = std::make_unique_for_overwrite<XLOPER12[]>(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    XLOPER12* to = sums.get();
    for (std::size_t at = 0; at < table.cells.size(); at += kColumns) {
      double sum = 0;
      for (std::size_t column = 0; column < kColumns; ++column) sum += table.cells[at + column].val.num;
      *to++ = NumberCell(sum);
    }
    benchmark::DoNotOptimize(sums.get());
  }
  CountBytes(state);
}

template <class Export>
void Sum(benchmark::State& state, Export function, bool isMixed) {
  const HostArray table = MakeTable(state.range(0), isMixed);
  for (auto _ : state) CallAsExcel(function, table.value, nullptr, nullptr);
  CountBytes(state);
}

void Aggregate(benchmark::State& state, const std::vector<double>& functions, double by) {
  const HostArray table = MakeTable(state.range(0), false);
  HostArray list(1, static_cast<int>(functions.size()));
  for (std::size_t at = 0; at < functions.size(); ++at) list.cells[at] = NumberCell(functions[at]);
  for (auto _ : state) CallAsExcel(&AGGREGATES_12, table.value, list.value, NumberCell(by), nullptr, nullptr);
  CountBytes(state);
}

/// A reference, which the host writes anew for each block.
void SumReference(benchmark::State& state) {
  InstallExcelAnswers();
  const CXlOper table = CXlOper::Reference(XLREF12{0, static_cast<RW>(state.range(0)) - 1, 0, kColumns - 1});
  for (auto _ : state) CallAsExcel(&SUMCOLS_12, table, nullptr, nullptr);
  CountBytes(state);
}

void AllSizes(benchmark::internal::Benchmark* benchmark) {
  for (const int rows : {1'000, 100'000, 1'000'000}) benchmark->Arg(rows);
  benchmark->Unit(benchmark::kMicrosecond);
}

BENCHMARK(AddColumns)->Apply(AllSizes);
BENCHMARK_CAPTURE(Sum, Columns, &SUMCOLS_12, false)->Apply(AllSizes);
BENCHMARK_CAPTURE(Sum, MixedColumns, &SUMCOLS_12, true)->Apply(AllSizes);
BENCHMARK(SumReference)->Apply(AllSizes);
BENCHMARK(AddRows)->Apply(AllSizes);
BENCHMARK_CAPTURE(Sum, Rows, &SUMROWS_12, false)->Apply(AllSizes);
BENCHMARK_CAPTURE(Sum, MixedRows, &SUMROWS_12, true)->Apply(AllSizes);
BENCHMARK_CAPTURE(Aggregate, SumOfAll, {9}, 0)->Apply(AllSizes);
BENCHMARK_CAPTURE(Aggregate, Variances, {10}, 1)->Apply(AllSizes);
BENCHMARK_CAPTURE(Aggregate, Medians, {12}, 1)->Apply(AllSizes);
BENCHMARK_CAPTURE(Aggregate, AllButMedians, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}, 1)->Apply(AllSizes);
BENCHMARK_CAPTURE(Aggregate, RowVariances, {10}, 2)->Apply(AllSizes);

}  // namespace
}  // namespace quillmere
