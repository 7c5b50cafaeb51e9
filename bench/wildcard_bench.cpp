// Filtering texts of eight units by a wildcard pattern, beside the loop that goes back to the last star. A benchmark's
// argument is the number of texts; about one in ten gets beyond the ends of the pattern.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>

#include "bench/going_back.h"
#include "bench/host_array.h"
#include "text/wildcard_pattern.h"

namespace quillmere {
namespace {

/// A column of texts of a letter and seven digits.
HostArray Texts(std::int64_t count) {
  HostArray texts(static_cast<int>(count), 1);
  std::mt19937 random(1);
  for (std::int64_t row = 0; row < count; ++row) texts.SetText(row, CountedText(XTEXT('K'), random() % 10'000'000));
  return texts;
}

template <class Match>
void Filter(benchmark::State& state, const Match& matches) {
  const HostArray texts = Texts(state.range(0));
  std::int64_t found = 0;
  for (auto _ : state) {
    found = 0;
    for (const XLOPER12& cell : texts.cells) found += IsTextCell(cell) && matches(TextOf(cell));
    benchmark::DoNotOptimize(found);
  }
  state.counters["found"] = static_cast<double>(found);
}

void AllSizes(benchmark::internal::Benchmark* benchmark) {
  for (const int texts : {1'000, 100'000, 1'000'000}) benchmark->Arg(texts);
  benchmark->Unit(benchmark::kMicrosecond);
}

void FilterByGoingBack(benchmark::State& state) {
  Filter(state, [](XStringView text) { return MatchesByGoingBack(XTEXT("k*5?7*3"), text); });
}
BENCHMARK(FilterByGoingBack)->Apply(AllSizes);

void FilterByPattern(benchmark::State& state, bool caseSensitive) {
  const text::WildcardPattern pattern(XTEXT("K*5?7*3"), caseSensitive);
  Filter(state, [&pattern](XStringView text) { return pattern.Matches(text); });
}
BENCHMARK_CAPTURE(FilterByPattern, AnyCase, false)->Apply(AllSizes);
BENCHMARK_CAPTURE(FilterByPattern, CaseSensitive, true)->Apply(AllSizes);

/// As engines do it, which know a matcher, whatever it is, and hand over some rows at a time.
void FilterInBatches(benchmark::State& state) {
  constexpr std::size_t kRows = 1024;
  const text::WildcardPattern pattern(XTEXT("K*5?7*3"), false);
  const text::TextMatcher* matcher = &pattern;
  benchmark::DoNotOptimize(matcher);
  const HostArray texts = Texts(state.range(0));
  std::size_t found = 0;
  for (auto _ : state) {
    found = 0;
    std::uint16_t places[kRows];
    for (std::size_t first = 0; first < texts.cells.size(); first += kRows) {
      const std::size_t count = std::min(kRows, texts.cells.size() - first);
      found += matcher->Keep(&texts.cells[first], 1, text::EveryPlace{}, count, places,
                             [](const XLOPER12&) { return false; });
      benchmark::DoNotOptimize(places);
    }
  }
  state.counters["found"] = static_cast<double>(found);
}
BENCHMARK(FilterInBatches)->Apply(AllSizes);

/// One text of 30,000 units against patterns that nearly match everywhere.
void NearMatches(benchmark::State& state, const XString& segment) {
  const XString text(30'000, XTEXT('a'));
  const text::WildcardPattern pattern(XTEXT("*") + segment + XTEXT("b*"), false);
  for (auto _ : state) benchmark::DoNotOptimize(pattern.Matches(text));
}
BENCHMARK_CAPTURE(NearMatches, ShortSegments, XTEXT("a*a*a*a*"))->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(NearMatches, SegmentOf64, XString(63, XTEXT('a')))->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(NearMatches, SegmentOf1000, XString(1'000, XTEXT('a')))->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(NearMatches, SegmentOf15000, XString(15'000, XTEXT('a')))->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace quillmere
