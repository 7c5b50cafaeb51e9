// What lookups cost on columns that somebody made to slow them down, beside the same on ordinary columns. None may cost
// more than three times an ordinary one of its kind.
#include <benchmark/benchmark.h>

#include <bit>
#include <limits>

#include "bench/excel_call.h"
#include "bench/host_array.h"
#include "exports.h"

namespace quillmere {
namespace {

constexpr int kRows = 20'000;
constexpr int kKeys = 15'000;

/// Times a lookup in one column; `set(array, at, number)` makes a cell of a number. Half the keys are in no row.
template <class SetCell>
void TimeColumn(benchmark::State& state, std::size_t units, const SetCell& set) {
  HostArray table(kRows, 1, units);
  HostArray keys(kKeys, 1, units);
  for (int row = 0; row < kRows; ++row) set(table, static_cast<std::size_t>(row), row);
  for (int key = 0; key < kKeys; ++key) set(keys, static_cast<std::size_t>(key), key + kRows / 2);
  for (auto _ : state) CallAsExcel(&AMATCH2_12, keys.value, table.value, nullptr, nullptr, nullptr, nullptr);
}

/// Numbers whose bits tell them apart from place `shift` on only.
void Numbers(benchmark::State& state, int shift) {
  TimeColumn(state, 0, [=](HostArray& array, std::size_t at, std::int64_t number) {
    array.cells[at] = NumberCell(0);
    array.cells[at].val.num = std::bit_cast<double>(number << shift);
  });
}

/// The same numbers with a NaN here and there: in every so many rows and keys.
void NumbersAndNan(benchmark::State& state, std::int64_t every) {
  TimeColumn(state, 0, [=](HostArray& array, std::size_t at, std::int64_t number) {
    array.cells[at] = NumberCell(static_cast<double>(number));
    if (number % every == every / 2) array.cells[at].val.num = std::numeric_limits<double>::quiet_NaN();
  });
}

/// Texts of `units` units, told apart by four of them from place `from` on, all others being those of `pattern` in
/// turn.
void Texts(benchmark::State& state, std::size_t units, std::size_t from, std::uint64_t pattern) {
  TimeColumn(state, units, [=](HostArray& array, std::size_t at, std::int64_t number) {
    std::vector<XCHAR> text{static_cast<XCHAR>(units)};
    for (std::size_t unit = 0; unit < units; ++unit) text.push_back(static_cast<XCHAR>(pattern >> unit % 4 * 16));
    for (std::size_t i = 0; i < 4; ++i) text[from + 1 + i] = static_cast<XCHAR>(XTEXT('a') + (number >> 4 * i & 15));
    array.SetText(at, text);
  });
}

constexpr std::uint64_t kPlain = 0x0041'0062'0063'0064;
/// A constant that a good many hashes multiply by: a factor of 0 in those that take it away first.
constexpr std::uint64_t kFactor = 0xD6E8'FEB8'6659'FD93;

BENCHMARK_CAPTURE(Numbers, Ordinary, 37)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Numbers, LowBits, 0)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Numbers, HighBits, 47)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(NumbersAndNan, Few, 5'000)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(NumbersAndNan, Many, 10)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Texts, Ordinary, 8, 0, kPlain)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Texts, ZeroFactor, 8, 0, kFactor)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Texts, OtherZeroFactor, 8, 4, 0x9E37'79B9'7F4A'7C15)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Texts, Long, 256, 0, kPlain)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Texts, LongWithZeroFactor, 256, 8, kFactor)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Texts, LongWithEqualPrefix, 256, 252, kPlain)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace quillmere
