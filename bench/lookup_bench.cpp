// What the lookups cost on arrays beside what one would write by hand with the standard library. A benchmark's
// arguments are the rows of the table and the number of keys, one in twenty of which is missing from the table.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cctype>
#include <random>
#include <string>
#include <unordered_map>
#include <vector>

#include "bench/excel_call.h"
#include "bench/host_array.h"
#include "exports.h"

namespace quillmere {
namespace {

/// What the key column holds, and the keys.
enum class KeyKind { kNumber, kText, kTextAndNumber, kMixed };

/// Sets the key of `columns` parts with that number; the numbers in the table are 0 to rows - 1.
void SetKey(HostArray& array, KeyKind kind, int row, int number) {
  const std::size_t at = static_cast<std::size_t>(row) * array.value.val.array.columns;
  const bool isText = kind == KeyKind::kText || (kind == KeyKind::kMixed && number % 2 == 0);
  if (kind == KeyKind::kTextAndNumber) {
    array.SetText(at, CountedText(XTEXT('c'), number % 1000));
    array.cells[at + 1] = NumberCell(number / 1000);
  } else if (isText) {
    array.SetText(at, CountedText(XTEXT('K'), number));
  } else {
    array.cells[at] = NumberCell(number);
  }
}

const XLOPER12 kNoMemory = NumberCell(0);

constexpr int PartsOf(KeyKind kind) { return kind == KeyKind::kTextAndNumber ? 2 : 1; }

struct Job {
  HostArray table;
  HostArray keys;
  CXlOper answerColumn;

  Job(const benchmark::State& state, KeyKind kind, bool sorted)
      : table(static_cast<int>(state.range(0)), PartsOf(kind) + 1),
        keys(static_cast<int>(state.range(1)), PartsOf(kind)),
        answerColumn(CXlOper::Number(PartsOf(kind) + 1)) {
    const auto rows = static_cast<int>(state.range(0));
    std::vector<int> numbers(static_cast<std::size_t>(rows));
    for (int row = 0; row < rows; ++row) numbers[row] = row;
    std::mt19937 random(1);
    if (!sorted) std::shuffle(numbers.begin(), numbers.end(), random);
    for (int row = 0; row < rows; ++row) {
      SetKey(table, kind, row, numbers[row]);
      table.At(row, PartsOf(kind)) = NumberCell(row * 0.25);
    }
    for (int key = 0; key < state.range(1); ++key)
      SetKey(keys, kind, key, static_cast<int>(random() % (rows + rows / 20)) + (key == 0 ? rows : 0));
  }
};

/// Times `look(keys, table, answerColumn)`.
template <class Look>
void Time(benchmark::State& state, KeyKind kind, bool sorted, const Look& look) {
  const Job job(state, kind, sorted);
  for (auto _ : state) look(job.keys.value, job.table.value, job.answerColumn);
}

void FirstMatches(benchmark::State& state, KeyKind kind, bool sorted) {
  Time(state, kind, sorted, [sorted](auto& keys, auto& table, auto& answerColumn) {
    CallAsExcel(&AVLOOKUP2_12, keys, table, answerColumn, BooleanCell(sorted), nullptr, nullptr, kNoMemory);
  });
}

void Unsorted(benchmark::State& state, KeyKind kind) { FirstMatches(state, kind, false); }

void Sorted(benchmark::State& state, KeyKind kind) { FirstMatches(state, kind, true); }

void AllMatches(benchmark::State& state) {
  Time(state, KeyKind::kNumber, false,
       [](auto& keys, auto& table, auto&) { CallAsExcel(&AMATCHES2_12, keys, table, nullptr, nullptr, nullptr); });
}

/// The last row of a single key that no row has.
void LastMatch(benchmark::State& state, KeyKind kind) {
  Time(state, kind, false, [](auto& keys, auto& table, auto&) {
    constexpr std::int32_t kLast = -2;
    CallAsExcel(&AMATCHNTH_12, keys, table, nullptr, nullptr, nullptr, kLast);
  });
}

/// Every row whose text matches a pattern; nine texts in ten fail at its last unit.
void Wildcards(benchmark::State& state, bool caseSensitive) {
  const CXlOper pattern = CXlOper::Text(XTEXT("K*5?7*3"));
  Time(state, KeyKind::kText, false, [&](auto&, auto& table, auto&) {
    CallAsExcel(caseSensitive ? &Case_AMATCHES2_12 : &AMATCHES2_12, pattern, table, nullptr, nullptr, nullptr);
  });
}

std::u16string Folded(const XLOPER12& cell) {
  std::u16string text(cell.val.str + 1, cell.val.str + 1 + cell.val.str[0]);
  for (char16_t& unit : text) unit = unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 32) : unit;
  return text;
}

/// A hash map of the rows, then one question per key.
template <class Key, class Read>
void PlainMap(benchmark::State& state, KeyKind kind, Read read) {
  Job job(state, kind, false);
  for (auto _ : state) {
    std::unordered_map<Key, int> rows;
    for (int row = 0; row < state.range(0); ++row) rows.try_emplace(read(job.table.At(row, 0)), row);
    std::vector<XLOPER12> result(static_cast<std::size_t>(state.range(1)));
    for (int key = 0; key < state.range(1); ++key) {
      const auto found = rows.find(read(job.keys.At(key, 0)));
      result[key] = found == rows.end() ? ErrorCell(xlerrNA) : job.table.At(found->second, 1);
    }
    benchmark::DoNotOptimize(result.data());
  }
}

void PlainMapOfNumbers(benchmark::State& state) {
  PlainMap<double>(state, KeyKind::kNumber, [](const XLOPER12& cell) { return cell.val.num; });
}

void PlainMapOfTexts(benchmark::State& state) { PlainMap<std::u16string>(state, KeyKind::kText, Folded); }

void PlainScanOfNumbers(benchmark::State& state) {
  Job job(state, KeyKind::kNumber, false);
  for (auto _ : state) {
    for (int key = 0; key < state.range(1); ++key) {
      int row = 0;
      while (row < state.range(0) &&
             !(IsNumberCell(job.table.At(row, 0)) && job.table.At(row, 0).val.num == job.keys.At(key, 0).val.num))
        ++row;
      benchmark::DoNotOptimize(row);
    }
  }
}

void PlainBinarySearch(benchmark::State& state) {
  Job job(state, KeyKind::kNumber, true);
  std::vector<int> places(static_cast<std::size_t>(state.range(0)));
  for (std::size_t row = 0; row < places.size(); ++row) places[row] = static_cast<int>(row);
  for (auto _ : state) {
    std::vector<XLOPER12> result(static_cast<std::size_t>(state.range(1)));
    for (int key = 0; key < state.range(1); ++key) {
      const double wanted = job.keys.At(key, 0).val.num;
      const auto end = std::upper_bound(places.begin(), places.end(), wanted,
                                        [&](double x, int row) { return x < job.table.At(row, 0).val.num; });
      const bool found = end != places.begin() && job.table.At(end[-1], 0).val.num == wanted;
      result[key] = found ? job.table.At(end[-1], 1) : ErrorCell(xlerrNA);
    }
    benchmark::DoNotOptimize(result.data());
  }
}

void ManyKeys(benchmark::internal::Benchmark* benchmark) {
  for (const int rows : {1'000, 10'000, 100'000, 1'000'000}) benchmark->Args({rows, 100'000});
  for (const int keys : {1, 2, 3, 1'000}) benchmark->Args({1'000'000, keys});
  benchmark->Unit(benchmark::kMillisecond);
}

void OneKey(benchmark::internal::Benchmark* benchmark) {
  benchmark->Args({1'000'000, 1})->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(Unsorted, Numbers, KeyKind::kNumber)->Apply(ManyKeys);
BENCHMARK(PlainMapOfNumbers)->Apply(ManyKeys);
BENCHMARK_CAPTURE(Unsorted, Texts, KeyKind::kText)->Apply(ManyKeys);
BENCHMARK(PlainMapOfTexts)->Apply(ManyKeys);
BENCHMARK_CAPTURE(Unsorted, TextAndNumber, KeyKind::kTextAndNumber)->Apply(ManyKeys);
BENCHMARK_CAPTURE(Unsorted, Mixed, KeyKind::kMixed)->Apply(ManyKeys);
BENCHMARK(AllMatches)->Apply(ManyKeys);
BENCHMARK_CAPTURE(LastMatch, Numbers, KeyKind::kNumber)->Apply(OneKey);
BENCHMARK_CAPTURE(LastMatch, Texts, KeyKind::kText)->Apply(OneKey);
BENCHMARK_CAPTURE(Wildcards, AnyCase, false)->Apply(OneKey);
BENCHMARK_CAPTURE(Wildcards, CaseSensitive, true)->Apply(OneKey);
BENCHMARK_CAPTURE(Sorted, Numbers, KeyKind::kNumber)->Apply(ManyKeys);
BENCHMARK(PlainBinarySearch)->Apply(ManyKeys);
BENCHMARK_CAPTURE(Sorted, Texts, KeyKind::kText)->Apply(ManyKeys);
BENCHMARK(PlainScanOfNumbers)->Apply(OneKey);

}  // namespace
}  // namespace quillmere
