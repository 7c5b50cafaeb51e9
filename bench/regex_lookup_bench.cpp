// Lookups of many regular expressions in an array of texts, beside the loop that one would write by hand with the
// library. A benchmark's arguments are the rows of the table and the number of expressions, one in twenty of which no
// row matches.
#include <benchmark/benchmark.h>

#include <random>
#include <string>
#include <vector>

#include "bench/excel_call.h"
#include "bench/host_array.h"
#include "exports.h"
#include "frame/locale/regex_traits.h"

namespace quillmere {
namespace {

/// The text of row 1234 is K0001234.
struct Job {
  HostArray table;
  HostArray keys;

  Job(const benchmark::State& state, const char* before, const char* behind)
      : table(static_cast<int>(state.range(0)), 1), keys(static_cast<int>(state.range(1)), 1, 24) {
    const auto rows = static_cast<int>(state.range(0));
    for (int row = 0; row < rows; ++row) table.SetText(static_cast<std::size_t>(row), CountedText(XTEXT('K'), row));
    std::mt19937 random(1);
    for (int key = 0; key < state.range(1); ++key) {
      const auto number = static_cast<int>(random() % (rows + rows / 20 + 1));
      const std::string digits = std::to_string(10'000'000 + number).substr(1);
      const std::string expression = before + digits + behind;
      std::vector<XCHAR> counted{static_cast<XCHAR>(expression.size())};
      counted.insert(counted.end(), expression.begin(), expression.end());
      keys.SetText(static_cast<std::size_t>(key), counted);
    }
  }
};

void FirstMatches(benchmark::State& state, const char* before, const char* behind) {
  const Job job(state, before, behind);
  for (auto _ : state) CallAsExcel(&Rgx_AMATCH2_12, job.keys.value, job.table.value, nullptr, nullptr, NumberCell(0));
}

void AllMatches(benchmark::State& state, const char* before, const char* behind) {
  const Job job(state, before, behind);
  for (auto _ : state) CallAsExcel(&Rgx_AMATCHES2_12, job.keys.value, job.table.value, nullptr);
}

void PlainSearches(benchmark::State& state, const char* before, const char* behind) {
  Job job(state, before, behind);
  for (auto _ : state) {
    for (int key = 0; key < state.range(1); ++key) {
      const XLOPER12& text = job.keys.At(key, 0);
      const LibraryRegex expression(XString(text.val.str + 1, text.val.str[0]),
                                    boost::regex_constants::perl | boost::regex_constants::icase);
      int row = 0;
      while (row < state.range(0)) {
        const XCHAR* const units = job.table.At(row, 0).val.str;
        if (boost::regex_search(units + 1, units + 1 + units[0], expression)) break;
        ++row;
      }
      benchmark::DoNotOptimize(row);
    }
  }
}

void ManyKeys(benchmark::internal::Benchmark* benchmark) {
  benchmark->Args({1'000, 1'000})->Args({100'000, 1'000})->Args({1'000'000, 100})->Unit(benchmark::kMillisecond);
}

void FewKeys(benchmark::internal::Benchmark* benchmark) {
  benchmark->Args({1'000, 100})->Args({100'000, 10})->Args({1'000'000, 1})->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(FirstMatches, Anchored, "^K", "$")->Apply(ManyKeys)->Apply(FewKeys);
BENCHMARK_CAPTURE(PlainSearches, Anchored, "^K", "$")->Apply(FewKeys);
BENCHMARK_CAPTURE(FirstMatches, Literal, "", "")->Apply(ManyKeys)->Apply(FewKeys);
BENCHMARK_CAPTURE(PlainSearches, Literal, "", "")->Apply(FewKeys);
BENCHMARK_CAPTURE(FirstMatches, Classes, "^[A-K]0*", "[^1]?$")->Apply(ManyKeys)->Apply(FewKeys);
BENCHMARK_CAPTURE(PlainSearches, Classes, "^[A-K]0*", "[^1]?$")->Apply(FewKeys);
BENCHMARK_CAPTURE(AllMatches, Literal, "", "")->Apply(ManyKeys);

}  // namespace
}  // namespace quillmere
