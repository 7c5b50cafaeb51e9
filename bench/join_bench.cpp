// What joins cost beside what one would write by hand with the standard library. A benchmark's argument is the number
// of rows of either table. Both have a column of keys and one of numbers; all results but that of MISSMATCHES have as
// many rows.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <string>
#include <unordered_map>
#include <vector>

#include "bench/excel_call.h"
#include "bench/host_array.h"
#include "exports.h"

namespace quillmere {
namespace {

/// What the keys are: distinct numbers, distinct texts, texts that differ in their last units alone, or, in the left
/// table, one number over and over.
enum class KeyKind { kNumber, kText, kLongText, kOneNumber };

constexpr std::size_t kPrefix = 30;
constexpr std::size_t kLongest = kPrefix + 8;

std::vector<XCHAR> KeyText(KeyKind kind, int number) {
  std::vector<XCHAR> text = CountedText(XTEXT('K'), number);
  if (kind != KeyKind::kLongText) return text;
  text.insert(text.begin() + 1, kPrefix, XTEXT('p'));
  text[0] = kLongest;
  return text;
}

struct Job {
  HostArray left;
  HostArray right;

  /// The keys of the right table begin at `first`, those of the left one at 0.
  Job(const benchmark::State& state, KeyKind kind, int first = 0)
      : left(static_cast<int>(state.range(0)), 2, kLongest), right(static_cast<int>(state.range(0)), 2, kLongest) {
    const auto rows = static_cast<int>(state.range(0));
    Fill(left, kind == KeyKind::kOneNumber ? std::vector<int>(static_cast<std::size_t>(rows)) : Shuffled(rows, 0),
         kind);
    Fill(right, Shuffled(rows, first), kind);
  }

  static std::vector<int> Shuffled(int rows, int first) {
    std::vector<int> numbers(static_cast<std::size_t>(rows));
    for (int row = 0; row < rows; ++row) numbers[row] = first + row;
    std::shuffle(numbers.begin(), numbers.end(), std::mt19937(static_cast<unsigned>(first) + 1));
    return numbers;
  }

  static void Fill(HostArray& table, const std::vector<int>& numbers, KeyKind kind) {
    const bool areTexts = kind == KeyKind::kText || kind == KeyKind::kLongText;
    for (std::size_t row = 0; row < numbers.size(); ++row) {
      if (areTexts)
        table.SetText(row * 2, KeyText(kind, numbers[row]));
      else
        table.cells[row * 2] = NumberCell(numbers[row]);
      table.cells[row * 2 + 1] = NumberCell(static_cast<double>(row));
    }
  }
};

void Matches(benchmark::State& state, KeyKind kind) {
  const Job job(state, kind);
  for (auto _ : state)
    CallAsExcel(&MATCHES_12, job.left.value, job.right.value, nullptr, nullptr, nullptr, nullptr, nullptr);
}

/// Half of the rows of either table have no partner.
void MissMatches(benchmark::State& state, KeyKind kind) {
  const Job job(state, kind, static_cast<int>(state.range(0)) / 2);
  for (auto _ : state)
    CallAsExcel(&MISSMATCHES_12, job.left.value, job.right.value, nullptr, nullptr, nullptr, nullptr, nullptr);
}

/// A multimap of the right rows, then its equal range for each left one.
template <class Key, class Read>
void PlainMultimap(benchmark::State& state, KeyKind kind, Read read) {
  Job job(state, kind);
  const auto rows = static_cast<int>(state.range(0));
  for (auto _ : state) {
    std::unordered_multimap<Key, int> index;
    for (int row = 0; row < rows; ++row) index.emplace(read(job.right.At(row, 0)), row);
    std::vector<XLOPER12> result;
    for (int row = 0; row < rows; ++row) {
      const auto found = index.equal_range(read(job.left.At(row, 0)));
      for (auto at = found.first; at != found.second; ++at) {
        result.insert(result.end(), &job.left.At(row, 0), &job.left.At(row, 0) + 2);
        result.insert(result.end(), &job.right.At(at->second, 0), &job.right.At(at->second, 0) + 2);
      }
    }
    benchmark::DoNotOptimize(result.data());
  }
}

void PlainMultimapOfNumbers(benchmark::State& state, KeyKind kind) {
  PlainMultimap<double>(state, kind, [](const XLOPER12& cell) { return cell.val.num; });
}

/// With regard to case, and with the texts of the result left where they are: less than what the function does.
void PlainMultimapOfTexts(benchmark::State& state, KeyKind kind) {
  PlainMultimap<std::u16string>(state, kind, [](const XLOPER12& cell) {
    return std::u16string(cell.val.str + 1, cell.val.str + 1 + cell.val.str[0]);
  });
}

void CompareEqual(benchmark::State& state, std::int32_t output) {
  const Job job(state, KeyKind::kText);
  for (auto _ : state) CallAsExcel(&COMPARE_12, job.left.value, job.left.value, NumberCell(output), nullptr, nullptr);
}

void Rows(benchmark::internal::Benchmark* benchmark) {
  for (const int rows : {1'000, 100'000, 1'000'000}) benchmark->Arg(rows);
  benchmark->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(Matches, Numbers, KeyKind::kNumber)->Apply(Rows);
BENCHMARK_CAPTURE(PlainMultimapOfNumbers, Numbers, KeyKind::kNumber)->Apply(Rows);
BENCHMARK_CAPTURE(Matches, OneNumber, KeyKind::kOneNumber)->Apply(Rows);
BENCHMARK_CAPTURE(PlainMultimapOfNumbers, OneNumber, KeyKind::kOneNumber)->Apply(Rows);
BENCHMARK_CAPTURE(Matches, Texts, KeyKind::kText)->Apply(Rows);
BENCHMARK_CAPTURE(PlainMultimapOfTexts, Texts, KeyKind::kText)->Apply(Rows);
BENCHMARK_CAPTURE(Matches, LongTexts, KeyKind::kLongText)->Apply(Rows);
BENCHMARK_CAPTURE(PlainMultimapOfTexts, LongTexts, KeyKind::kLongText)->Apply(Rows);
BENCHMARK_CAPTURE(MissMatches, Numbers, KeyKind::kNumber)->Apply(Rows);
BENCHMARK_CAPTURE(MissMatches, Texts, KeyKind::kText)->Apply(Rows);
BENCHMARK_CAPTURE(CompareEqual, Cells, 0)->Apply(Rows);
BENCHMARK_CAPTURE(CompareEqual, Count, 1)->Apply(Rows);

}  // namespace
}  // namespace quillmere
