// What interpolation, roll-forwards and the Gini coefficient cost beside what one would write by hand with the standard
// library. A benchmark's argument is the number of results, or of rows that are read.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>
#include <vector>

#include "bench/excel_call.h"
#include "bench/host_array.h"
#include "exports.h"

namespace quillmere {
namespace {

void Rows(benchmark::internal::Benchmark* benchmark) {
  for (const int rows : {1'000, 100'000, 1'000'000}) benchmark->Arg(rows);
  benchmark->Unit(benchmark::kMicrosecond);
}

HostArray Numbers(int rows, int columns, double most, unsigned seed) {
  HostArray numbers(rows, columns, 0);
  std::mt19937_64 random(seed);
  std::uniform_real_distribution<double> draw(0, most);
  for (XLOPER12& cell : numbers.cells) cell = NumberCell(draw(random));
  return numbers;
}

/// A table of so many rows and columns, whose first column and row count up from 0.
HostArray Table(int rows, int columns) {
  HostArray table = Numbers(rows, columns, 1, 7);
  for (int row = 0; row < rows; ++row) table.At(row, 0) = NumberCell(row);
  for (int column = 1; column < columns; ++column) table.At(0, column) = NumberCell(column);
  return table;
}

// Between rows: as many values as rows, in any order; one value.

struct RowJob {
  explicit RowJob(int rows) : values(Numbers(rows, 1, rows - 1, 1)), table(Table(rows, 3)) {}

  HostArray values;
  HostArray table;
  XLOPER12 answers = NumberCell(3);
};

void ManyValues(benchmark::State& state) {
  const RowJob job(static_cast<int>(state.range(0)));
  for (auto _ : state) CallAsExcel(&VLINTERP2_12, job.values.value, job.table.value, job.answers, nullptr, nullptr);
}
BENCHMARK(ManyValues)->Apply(Rows);

void OneValue(benchmark::State& state) {
  const RowJob job(static_cast<int>(state.range(0)));
  const XLOPER12 value = NumberCell(static_cast<double>(state.range(0)) / 3);
  for (auto _ : state) CallAsExcel(&VLINTERP2_12, value, job.table.value, job.answers, nullptr, nullptr);
}
BENCHMARK(OneValue)->Apply(Rows);

struct PlainPlace {
  std::size_t low;
  double weight;
};

PlainPlace PlainlyFound(const std::vector<double>& sorted, double value) {
  const auto above = std::upper_bound(sorted.begin() + 1, sorted.end() - 1, value);
  return {static_cast<std::size_t>(above - sorted.begin()) - 1, (value - above[-1]) / (above[0] - above[-1])};
}

double Mixed(const XLOPER12& low, const XLOPER12& high, double weight) {
  return low.val.num + (high.val.num - low.val.num) * weight;
}

void PlainManyValues(benchmark::State& state) {
  RowJob job(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    std::vector<double> sorted;
    for (std::size_t at = 0; at < job.table.cells.size(); at += 3) sorted.push_back(job.table.cells[at].val.num);
    const auto result = std::make_unique_for_overwrite<XLOPER12[]>(job.values.cells.size());
    XLOPER12* to = result.get();
    for (const XLOPER12& value : job.values.cells) {
      const PlainPlace place = PlainlyFound(sorted, value.val.num);
      const XLOPER12* const row = &job.table.cells[place.low * 3 + 2];
      *to++ = NumberCell(Mixed(row[0], row[3], place.weight));
    }
    benchmark::DoNotOptimize(result.get());
  }
}
BENCHMARK(PlainManyValues)->Apply(Rows);

// In two dimensions: pairs of values in any order, in a table of a thousand rows and columns.

struct PairJob {
  explicit PairJob(int pairs) : rows(Numbers(pairs, 1, kSize - 1, 1)), columns(Numbers(pairs, 1, kSize - 1, 2)) {
    for (HostArray* values : {&rows, &columns})
      for (XLOPER12& cell : values->cells) cell.val.num = std::max(cell.val.num, 1.0);
  }

  static constexpr int kSize = 1'000;
  HostArray rows;
  HostArray columns;
  HostArray table = Table(kSize, kSize);
};

void Pairs(benchmark::State& state) {
  const PairJob job(static_cast<int>(state.range(0)));
  for (auto _ : state) CallAsExcel(&LINTERP2D_12, job.rows.value, job.columns.value, job.table.value, nullptr);
}
BENCHMARK(Pairs)->Apply(Rows);

void PlainPairs(benchmark::State& state) {
  PairJob job(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    std::vector<double> down;
    std::vector<double> across;
    for (int place = 1; place < PairJob::kSize; ++place) {
      down.push_back(job.table.At(place, 0).val.num);
      across.push_back(job.table.At(0, place).val.num);
    }
    const auto result = std::make_unique_for_overwrite<XLOPER12[]>(job.rows.cells.size());
    for (std::size_t at = 0; at < job.rows.cells.size(); ++at) {
      const PlainPlace row = PlainlyFound(down, job.rows.cells[at].val.num);
      const PlainPlace column = PlainlyFound(across, job.columns.cells[at].val.num);
      const XLOPER12* const low = &job.table.At(static_cast<int>(row.low) + 1, static_cast<int>(column.low) + 1);
      const XLOPER12* const high = low + PairJob::kSize;
      const double lowNumber = Mixed(low[0], low[1], column.weight);
      const double highNumber = Mixed(high[0], high[1], column.weight);
      result[at] = NumberCell(lowNumber + (highNumber - lowNumber) * row.weight);
    }
    benchmark::DoNotOptimize(result.get());
  }
}
BENCHMARK(PlainPairs)->Apply(Rows);

// Three flows in each period, beside a plain copy of the result's cells into fresh memory.

void RollForward(benchmark::State& state, bool down) {
  const auto periods = static_cast<int>(state.range(0));
  const HostArray flows = Numbers(periods, 3, 1, 3);
  const XLOPER12 opening = NumberCell(100);
  const XLOPER12 isDown = BooleanCell(down);
  for (auto _ : state) CallAsExcel(&CORKSCREW_12, opening, flows.value, isDown);
}
BENCHMARK_CAPTURE(RollForward, Down, true)->Apply(Rows);
BENCHMARK_CAPTURE(RollForward, Across, false)->Apply(Rows);

void PlainCopy(benchmark::State& state) {
  const HostArray block = Numbers(static_cast<int>(state.range(0)), 5, 1, 3);
  for (auto _ : state) {
    const auto copy = std::make_unique_for_overwrite<XLOPER12[]>(block.cells.size());
    std::copy(block.cells.begin(), block.cells.end(), copy.get());
    benchmark::DoNotOptimize(copy.get());
  }
}
BENCHMARK(PlainCopy)->Apply(Rows);

void Gini(benchmark::State& state) {
  const HostArray numbers = Numbers(static_cast<int>(state.range(0)), 1, 1e6, 5);
  for (auto _ : state) CallAsExcel(&GINICOEFF_12, numbers.value);
}
BENCHMARK(Gini)->Apply(Rows);

void PlainGini(benchmark::State& state) {
  const HostArray numbers = Numbers(static_cast<int>(state.range(0)), 1, 1e6, 5);
  for (auto _ : state) {
    std::vector<double> sorted;
    for (const XLOPER12& cell : numbers.cells) sorted.push_back(cell.val.num);
    std::sort(sorted.begin(), sorted.end());
    double apart = 0;
    double all = 0;
    const auto count = static_cast<double>(sorted.size());
    for (std::size_t at = 0; at < sorted.size(); ++at) {
      apart += (2 * static_cast<double>(at) + 1 - count) * sorted[at];
      all += sorted[at];
    }
    benchmark::DoNotOptimize(apart / (count * all));
  }
}
BENCHMARK(PlainGini)->Apply(Rows);

}  // namespace
}  // namespace quillmere
