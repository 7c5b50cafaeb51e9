// What the text functions cost on texts of eight units, beside a plain copy of the cells and texts that they return. A
// benchmark's argument is the number of texts.
#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

#include "bench/excel_answers.h"
#include "bench/excel_call.h"
#include "bench/host_array.h"
#include "exports.h"

namespace quillmere {
namespace {

constexpr int kLength = 12;  ///< of padded texts

/// A column of codes of a letter and seven digits, in no order.
HostArray Codes(std::int64_t count) {
  HostArray codes(static_cast<int>(count), 1);
  for (std::int64_t row = 0; row < count; ++row)
    codes.SetText(row, CountedText(XTEXT('K'), row * 7'654'321 % 9'999'991));
  return codes;
}

/// A text argument.
struct TextArgument {
  XString counted;
  XLOPER12 value{};

  explicit TextArgument(XStringView text) : counted(1, static_cast<XCHAR>(text.size())) {
    counted += text;
    value.val.str = counted.data();
    value.xltype = xltypeStr;
  }
};

void Split(benchmark::State& state, XStringView delimiters, int count) {
  InstallExcelAnswers();
  const HostArray codes = Codes(state.range(0));
  const TextArgument parting(delimiters);
  for (auto _ : state) CallAsExcel(&SPLIT_TEXT_12, codes.value, parting.value, NumberCell(count), nullptr);
}

void Reverse(benchmark::State& state, int units) {
  InstallExcelAnswers();
  const HostArray codes = Codes(state.range(0));
  for (auto _ : state) CallAsExcel(&REVERSE_TEXT_12, codes.value, NumberCell(units));
}

void Pad(benchmark::State& state, bool atEnd) {
  InstallExcelAnswers();
  const HostArray codes = Codes(state.range(0));
  const TextArgument pad(XTEXT("0"));
  for (auto _ : state) CallAsExcel(&PAD_TEXT_12, pad.value, codes.value, std::int32_t{kLength}, BooleanCell(atEnd));
}

void Groups(benchmark::State& state, int number, int type) {
  InstallExcelAnswers();
  const HostArray codes = Codes(state.range(0));
  for (auto _ : state)
    CallAsExcel(&GROUPS_12, codes.value, NumberCell(number), nullptr, NumberCell(type), nullptr, nullptr);
}

void Concat(benchmark::State& state) {
  InstallExcelAnswers();
  HostArray letters(static_cast<int>(state.range(0)), 1, 1);
  for (std::size_t row = 0; row < letters.cells.size(); ++row) letters.SetText(row, {1, XTEXT('a')});
  for (auto _ : state) CallAsExcel(&CONCAT_RANGE_12, letters.value, nullptr, nullptr, nullptr, nullptr, nullptr);
}

/// Cells and texts copied into memory that was touched before.
void PlainCopy(benchmark::State& state, std::size_t units) {
  HostArray texts(static_cast<int>(state.range(0)), 1, units);
  std::vector<XCHAR> counted(units + 1, XTEXT('a'));
  counted[0] = static_cast<XCHAR>(units);
  for (std::size_t row = 0; row < texts.cells.size(); ++row) texts.SetText(row, counted);
  std::vector<XLOPER12> cells(texts.cells.size());
  std::vector<XCHAR> copies(texts.cells.size() * (units + 1));
  for (auto _ : state) {
    XCHAR* copy = copies.data();
    for (std::size_t row = 0; row < cells.size(); ++row) {
      const XLOPER12& from = texts.cells[row];
      const std::size_t room = std::size_t{from.val.str[0]} + 1;
      std::memcpy(copy, from.val.str, room * sizeof(XCHAR));
      cells[row] = from;
      cells[row].val.str = copy;
      copy += room;
    }
    benchmark::DoNotOptimize(cells.data());
    benchmark::DoNotOptimize(copies.data());
  }
}

void AllSizes(benchmark::internal::Benchmark* benchmark) {
  for (const int texts : {1'000, 100'000, 1'000'000}) benchmark->Arg(texts);
  benchmark->Unit(benchmark::kMicrosecond);
}

BENCHMARK_CAPTURE(PlainCopy, Codes, 8)->Apply(AllSizes);
BENCHMARK_CAPTURE(Split, NoDelimiter, XTEXT(" "), 0)->Apply(AllSizes);
BENCHMARK_CAPTURE(Split, AllTokens, XTEXT("5"), 0)->Apply(AllSizes);
BENCHMARK_CAPTURE(Split, SecondToken, XTEXT("5"), 2)->Apply(AllSizes);
BENCHMARK_CAPTURE(Split, ManyDelimiters, XTEXT("123456789"), 0)->Apply(AllSizes);
BENCHMARK_CAPTURE(Reverse, Whole, 0)->Apply(AllSizes);
BENCHMARK_CAPTURE(Reverse, LastThree, 3)->Apply(AllSizes);
BENCHMARK_CAPTURE(PlainCopy, Padded, kLength)->Apply(AllSizes);
BENCHMARK_CAPTURE(Pad, Front, false)->Apply(AllSizes);
BENCHMARK_CAPTURE(Pad, End, true)->Apply(AllSizes);
BENCHMARK_CAPTURE(Groups, FirstDigits, 1, 0)->Apply(AllSizes);
BENCHMARK_CAPTURE(Groups, AllLetters, 0, 1)->Apply(AllSizes);
BENCHMARK_CAPTURE(PlainCopy, Letters, 1)->Arg(30'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(Concat)->Arg(1'000)->Arg(30'000)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace quillmere
