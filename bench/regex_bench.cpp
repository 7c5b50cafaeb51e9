// Filtering texts of eight units by a regular expression, finding what it matches in them and replacing it, beside the
// library's plain algorithms. A benchmark's argument is the number of texts.
#include <benchmark/benchmark.h>

#include <iterator>
#include <vector>

#include "frame/locale/regex_traits.h"
#include "text/regex/regex_matches.h"
#include "text/regex/regex_pattern.h"

namespace quillmere {
namespace {

constexpr std::size_t kTextUnits = 8;
constexpr const XCHAR* kExpression = XTEXT("^K.*7[0-9]*3$");

/// Texts of a letter and seven digits, one behind the other.
std::vector<XCHAR> Texts(std::int64_t count) {
  std::vector<XCHAR> units;
  units.reserve(count * kTextUnits);
  for (std::int64_t text = 0; text < count; ++text) {
    units.push_back(XTEXT('K'));
    const std::int64_t number = text * 7'919 % 9'999'991;
    for (std::int64_t power = 1'000'000; power != 0; power /= 10)
      units.push_back(static_cast<XCHAR>(XTEXT('0') + number / power % 10));
  }
  return units;
}

template <class Match>
void Filter(benchmark::State& state, const Match& matches) {
  const std::vector<XCHAR> texts = Texts(state.range(0));
  std::int64_t found = 0;
  for (auto _ : state) {
    found = 0;
    for (std::size_t at = 0; at < texts.size(); at += kTextUnits) found += matches(XStringView(&texts[at], kTextUnits));
    benchmark::DoNotOptimize(found);
  }
  state.counters["found"] = static_cast<double>(found);
}

void AllSizes(benchmark::internal::Benchmark* benchmark) {
  for (const int texts : {1'000, 100'000, 1'000'000}) benchmark->Arg(texts);
  benchmark->Unit(benchmark::kMicrosecond);
}

void FilterByPlainSearch(benchmark::State& state) {
  const LibraryRegex expression(kExpression, boost::regex_constants::perl | boost::regex_constants::icase);
  Filter(state,
         [&](XStringView text) { return boost::regex_search(text.data(), text.data() + text.size(), expression); });
}
BENCHMARK(FilterByPlainSearch)->Apply(AllSizes);

void FilterByRegex(benchmark::State& state, XStringView expression) {
  text::RegexBudget budget;
  const text::RegexPattern pattern(expression, budget);
  Filter(state, [&](XStringView text) { return pattern.Matches(text); });
}
BENCHMARK_CAPTURE(FilterByRegex, Required, kExpression)->Apply(AllSizes);
/// Nothing can be told of its texts before they are searched.
BENCHMARK_CAPTURE(FilterByRegex, Searched, XTEXT("^(?:K.*7[0-9]*3)$"))->Apply(AllSizes);

constexpr const XCHAR* kPart = XTEXT("7[0-9]*3");

void FindByPlainSearch(benchmark::State& state) {
  const LibraryRegex expression(kPart, boost::regex_constants::perl | boost::regex_constants::icase);
  boost::match_results<const XCHAR*> match;
  Filter(state, [&](XStringView text) {
    return boost::regex_search(text.data(), text.data() + text.size(), match, expression) ? match.position() : 0;
  });
}
BENCHMARK(FindByPlainSearch)->Apply(AllSizes);

void FindByRegex(benchmark::State& state) {
  text::RegexBudget budget;
  const text::Regex regex(kPart, LetterCase::kIgnored);
  Filter(state, [&](XStringView text) {
    const auto match = text::RegexMatches(regex, text, text::AfterEmptyMatch::kStep, budget).Next();
    return match ? match->place : 0;
  });
}
BENCHMARK(FindByRegex)->Apply(AllSizes);

void ReplaceByLibrary(benchmark::State& state) {
  const LibraryRegex expression(XTEXT("[0-9]"), boost::regex_constants::perl);
  const XString format = XTEXT("x");
  XString replaced;
  Filter(state, [&](XStringView text) {
    replaced.clear();
    boost::regex_replace(std::back_inserter(replaced), text.begin(), text.end(), expression, format);
    return replaced.size();
  });
}
BENCHMARK(ReplaceByLibrary)->Apply(AllSizes);

void ReplaceByRegex(benchmark::State& state) {
  text::RegexBudget budget;
  const text::Regex regex(XTEXT("[0-9]"), LetterCase::kCounts);
  const XString format = XTEXT("x");
  text::BoundedText replaced;
  Filter(state, [&](XStringView text) {
    replaced.Clear();
    std::size_t copied = 0;
    text::RegexMatches matches(regex, text, text::AfterEmptyMatch::kSamePlace, budget);
    while (const auto match = matches.Next()) {
      replaced.Append(text.substr(copied, match->place - copied));
      matches.AppendFormatted(format, replaced);
      copied = match->place + match->units;
    }
    replaced.Append(text.substr(copied));
    return replaced.View().size();
  });
}
BENCHMARK(ReplaceByRegex)->Apply(AllSizes);

void Compile(benchmark::State& state) {
  text::RegexBudget budget;
  for (auto _ : state) benchmark::DoNotOptimize(text::RegexPattern(kExpression, budget));
}
BENCHMARK(Compile)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace quillmere
