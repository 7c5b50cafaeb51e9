// What moving averages, running totals and differences cost beside a plain copy of the cells, which reads and writes as
// many. A benchmark's argument is the number of values; the rate is that at which cells are read.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <memory>
#include <random>

#include "bench/excel_answers.h"
#include "bench/excel_call.h"
#include "bench/host_array.h"
#include "exports.h"

namespace quillmere {
namespace {

constexpr std::int32_t kWindow = 20;

/// Numbers in no order, as the columns of a table.
HostArray MakeSeries(std::int64_t values, int columns) {
  HostArray table(static_cast<int>(values / columns), columns);
  std::mt19937 random(1);
  std::uniform_real_distribution<double> number(-1, 1);
  for (XLOPER12& cell : table.cells) cell = NumberCell(number(random));
  return table;
}

void CountBytes(benchmark::State& state) {
  state.SetBytesProcessed(state.iterations() * state.range(0) * static_cast<std::int64_t>(sizeof(XLOPER12)));
}

void CopyCells(benchmark::State& state) {
  const HostArray table = MakeSeries(state.range(0), 1);
  const auto copy = std::make_unique<XLOPER12[]>(table.cells.size());
  for (auto _ : state) {
    std::ranges::copy(table.cells, copy.get());
    benchmark::DoNotOptimize(copy.get());
    benchmark::ClobberMemory();
  }
  CountBytes(state);
}

void Average(benchmark::State& state, std::int32_t count, std::int32_t method, int columns, bool isDown, double start) {
  const HostArray table = MakeSeries(state.range(0), columns);
  for (auto _ : state) CallAsExcel(&MOVAVG_12, table.value, count, method, BooleanCell(isDown), NumberCell(start));
  CountBytes(state);
}

void Average(benchmark::State& state, std::int32_t count, std::int32_t method) {
  Average(state, count, method, 1, true, 1);
}

/// Of a window as long as half the series.
void AverageLong(benchmark::State& state, std::int32_t method) {
  Average(state, static_cast<std::int32_t>(state.range(0) / 2), method);
}

void Accumulate(benchmark::State& state) {
  const HostArray table = MakeSeries(state.range(0), 1);
  for (auto _ : state) CallAsExcel(&ACCUMULATE_12, table.value, nullptr, nullptr);
  CountBytes(state);
}

/// A reference, which the host writes anew for each block.
void AccumulateReference(benchmark::State& state) {
  InstallExcelAnswers();
  const CXlOper table = CXlOper::Reference(XLREF12{0, static_cast<RW>(state.range(0)) - 1, 0, 0});
  for (auto _ : state) CallAsExcel(&ACCUMULATE_12, table, nullptr, nullptr);
  CountBytes(state);
}

void Subtract(benchmark::State& state, double lag) {
  const HostArray table = MakeSeries(state.range(0), 1);
  for (auto _ : state) CallAsExcel(&DIFF_12, table.value, NumberCell(lag), nullptr);
  CountBytes(state);
}

void AllSizes(benchmark::internal::Benchmark* benchmark) {
  for (const int values : {1'000, 100'000, 1'000'000}) benchmark->Arg(values);
  benchmark->Unit(benchmark::kMicrosecond);
}

BENCHMARK(CopyCells)->Apply(AllSizes);
BENCHMARK_CAPTURE(Average, Simple, kWindow, 1)->Apply(AllSizes);
BENCHMARK_CAPTURE(Average, Central, kWindow, 2)->Apply(AllSizes);
BENCHMARK_CAPTURE(Average, Cumulative, kWindow, 3)->Apply(AllSizes);
BENCHMARK_CAPTURE(Average, Weighted, kWindow, 4)->Apply(AllSizes);
BENCHMARK_CAPTURE(Average, Exponential, kWindow, 5)->Apply(AllSizes);
BENCHMARK_CAPTURE(Average, DoubleExponential, kWindow, 6)->Apply(AllSizes);
BENCHMARK_CAPTURE(Average, Backcast, kWindow, 5, 1, true, -1)->Apply(AllSizes);
BENCHMARK_CAPTURE(AverageLong, Simple, 1)->Apply(AllSizes);
BENCHMARK_CAPTURE(AverageLong, Weighted, 4)->Apply(AllSizes);
BENCHMARK_CAPTURE(Average, FiveColumns, kWindow, 1, 5, true, 1)->Apply(AllSizes);
BENCHMARK_CAPTURE(Average, FiftyColumns, 10, 1, 50, true, 1)->Apply(AllSizes);
BENCHMARK_CAPTURE(Average, RowsOfFifty, 10, 1, 50, false, 1)->Apply(AllSizes);
BENCHMARK(Accumulate)->Apply(AllSizes);
BENCHMARK(AccumulateReference)->Apply(AllSizes);
BENCHMARK_CAPTURE(Subtract, Neighbours, 1)->Apply(AllSizes);
BENCHMARK_CAPTURE(Subtract, FarApart, 500)->Apply(AllSizes);

}  // namespace
}  // namespace quillmere
