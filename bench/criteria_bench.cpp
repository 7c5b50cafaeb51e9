// What each kind of criterion costs on an array of six columns, beside the loop that one would write by hand. A
// benchmark's argument is the number of rows; few of them meet the criteria where nothing else is said.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <numeric>
#include <random>
#include <string>
#include <unordered_set>
#include <vector>

#include "bench/excel_answers.h"
#include "bench/excel_call.h"
#include "bench/going_back.h"
#include "bench/host_array.h"
#include "exports.h"

namespace quillmere {
namespace {

/// The columns of the table: all different numbers in no order, the same as texts, one of a thousand texts, a number
/// from 0 to 1 or in every fiftieth row nothing, a date, and TRUE in every sixteenth row or so.
enum Column { kKey = 1, kText, kGroup, kShare, kDate, kFlag, kColumns = kFlag };

const XLOPER12& CellOf(const HostArray& table, std::int64_t row, Column column) {
  return table.cells[static_cast<std::size_t>(row) * kColumns + column - 1];
}

HostArray MakeTable(std::int64_t rows) {
  HostArray table(static_cast<int>(rows), kColumns);
  std::vector<int> keys(static_cast<std::size_t>(rows));
  std::iota(keys.begin(), keys.end(), 0);
  std::mt19937 random(1);
  std::shuffle(keys.begin(), keys.end(), random);
  for (std::size_t row = 0; row < keys.size(); ++row) {
    XLOPER12* const cells = &table.cells[row * kColumns] - 1;
    cells[kKey] = NumberCell(keys[row]);
    table.SetText(row * kColumns + kText - 1, CountedText(XTEXT('K'), keys[row]));
    table.SetText(row * kColumns + kGroup - 1, CountedText(XTEXT('g'), static_cast<std::int64_t>(random() % 1'000)));
    if (random() % 50 != 0) cells[kShare] = NumberCell(static_cast<int>(random() % 1'000'000) * 1e-6);
    cells[kDate] = NumberCell(30'000 + static_cast<int>(random() % 15'000));
    cells[kFlag] = BooleanCell(random() % 16 == 0);
  }
  return table;
}

/// Col1, Crit1 and so on, as they are handed over.
class Pairs {
 public:
  Pairs& Add(int column, const XLOPER12& criterion) {
    columns_[count_] = column == 0 ? OrMarker().Raw() : NumberCell(column);
    criteria_[count_++] = criterion;
    return *this;
  }
  Pairs& Add(int column, const CXlOper& criterion) { return Add(column, criterion.Raw()); }

  XLOPER12* At(std::size_t place) {
    if (place / 2 >= count_) return nullptr;
    return &(place % 2 == 0 ? columns_ : criteria_)[place / 2];
  }

 private:
  static const CXlOper& OrMarker() {
    static const CXlOper marker = CXlOper::Text(XTEXT("#OR#"));
    return marker;
  }

  std::array<XLOPER12, 18> columns_;
  std::array<XLOPER12, 18> criteria_;
  std::size_t count_ = 0;
};

template <class Export>
void Call(Export function, int sorted, const HostArray& table, int returned, Pairs& pairs) {
  [&]<std::size_t... at>(std::index_sequence<at...>) {
    CallAsExcel(function, NumberCell(sorted), table.value, NumberCell(returned), pairs.At(at)...);
  }
  (std::make_index_sequence<36>());
}

/// Times the search of rows, which are listed as runs.
void Find(benchmark::State& state, Pairs pairs) {
  InstallExcelAnswers();
  const HostArray table = MakeTable(state.range(0));
  for (auto _ : state) Call(&FILTER_MATCH_12, 0, table, 1, pairs);
}

void OneText(benchmark::State& state, Column column, const XCHAR* text) {
  const CXlOper criterion = CXlOper::Text(text);
  Find(state, Pairs().Add(column, criterion));
}

void OneNumber(benchmark::State& state) { Find(state, Pairs().Add(kKey, NumberCell(500))); }

void OneBoolean(benchmark::State& state) { Find(state, Pairs().Add(kFlag, BooleanCell(true))); }

/// Every tenth number from 0 on, as a number or a text of the table.
HostArray EveryTenth(int count, bool asTexts) {
  HostArray list(count, 1);
  for (int place = 0; place < count; ++place) {
    if (asTexts)
      list.SetText(static_cast<std::size_t>(place), CountedText(XTEXT('k'), place * 10));
    else
      list.At(place, 0) = NumberCell(place * 10);
  }
  return list;
}

/// Getting the list ready counts; what Excel itself takes for the VALUE of each text is not in it.
void List(benchmark::State& state, int count, bool asTexts) {
  const HostArray list = EveryTenth(count, asTexts);
  Find(state, Pairs().Add(asTexts ? kText : kKey, list.value));
}

/// Either of a group, or a large share with TRUE beside it.
void OrGroups(benchmark::State& state) {
  const CXlOper group = CXlOper::Text(XTEXT("g0000007"));
  const CXlOper large = CXlOper::Text(XTEXT(">0.99"));
  const CXlOper number = CXlOper::Text(XTEXT("#N"));
  Find(state, Pairs()
                  .Add(kGroup, group)
                  .Add(0, NumberCell(0))
                  .Add(kShare, large)
                  .Add(kShare, number)
                  .Add(kFlag, BooleanCell(true)));
}

/// Equality in every one of `columns` sorted columns, each of which tells apart twice as many rows as the one before,
/// the last one all of them.
void Sorted(benchmark::State& state, int columns) {
  const auto rows = static_cast<int>(state.range(0));
  HostArray table(rows, columns);
  Pairs pairs;
  for (int column = 0; column < columns; ++column) {
    const int shift = columns - 1 - column;
    for (int row = 0; row < rows; ++row) table.At(row, column) = NumberCell(row >> shift);
    pairs.Add(column + 1, NumberCell(rows / 3 >> shift));
  }
  for (auto _ : state) Call(&FILTER_MATCH_12, columns, table, 1, pairs);
}

/// A sum of shares where a group, a date and a boolean are as wanted.
void SumOfThree(benchmark::State& state) {
  InstallExcelAnswers();
  const HostArray table = MakeTable(state.range(0));
  const CXlOper group = CXlOper::Text(XTEXT("g0000007"));
  const CXlOper date = CXlOper::Text(XTEXT(">=40000"));
  Pairs pairs;
  pairs.Add(kGroup, group).Add(kDate, date).Add(kFlag, BooleanCell(true));
  for (auto _ : state) Call(&ASUMIFS_12, 0, table, kShare, pairs);
}

/// The numbers of the rows whose cell in a column is as wanted.
template <class Holds>
void PlainFind(benchmark::State& state, Column column, const Holds& holds) {
  const HostArray table = MakeTable(state.range(0));
  for (auto _ : state) {
    std::vector<std::int64_t> found;
    for (std::int64_t row = 0; row < state.range(0); ++row)
      if (holds(CellOf(table, row, column))) found.push_back(row);
    benchmark::DoNotOptimize(found.data());
  }
}

void PlainNumber(benchmark::State& state) {
  PlainFind(state, kShare, [](const XLOPER12& cell) { return IsNumberCell(cell) && cell.val.num < 0.01; });
}

bool EqualsPlainly(const XLOPER12& cell, XStringView text) {
  if (!IsTextCell(cell)) return false;
  const XStringView own = TextOf(cell);
  return std::equal(own.begin(), own.end(), text.begin(), text.end(),
                    [](XCHAR a, XCHAR b) { return FoldUnit(a) == FoldUnit(b); });
}

void PlainText(benchmark::State& state) {
  PlainFind(state, kGroup, [](const XLOPER12& cell) { return EqualsPlainly(cell, XTEXT("G0000007")); });
}

void PlainWildcard(benchmark::State& state) {
  PlainFind(state, kText, [](const XLOPER12& cell) {
    return IsTextCell(cell) && MatchesByGoingBack(XTEXT("k*5?7*3"), TextOf(cell));
  });
}

/// A set of the list's elements is made each time, as the criterion is.
template <class Key, class Read>
void PlainList(benchmark::State& state, bool asTexts, const Read& read) {
  const HostArray list = EveryTenth(100'000, asTexts);
  const HostArray table = MakeTable(state.range(0));
  for (auto _ : state) {
    std::unordered_set<Key> wanted;
    for (const XLOPER12& element : list.cells) wanted.insert(read(element));
    std::vector<std::int64_t> found;
    for (std::int64_t row = 0; row < state.range(0); ++row)
      if (wanted.contains(read(CellOf(table, row, asTexts ? kText : kKey)))) found.push_back(row);
    benchmark::DoNotOptimize(found.data());
  }
}

void PlainListOfNumbers(benchmark::State& state) {
  PlainList<double>(state, false, [](const XLOPER12& cell) { return cell.val.num; });
}

void PlainListOfTexts(benchmark::State& state) {
  PlainList<std::u16string>(state, true, [](const XLOPER12& cell) {
    std::u16string text(TextOf(cell));
    for (char16_t& unit : text) unit = FoldUnit(unit);
    return text;
  });
}

void PlainSumOfThree(benchmark::State& state) {
  const HostArray table = MakeTable(state.range(0));
  for (auto _ : state) {
    double sum = 0;
    for (std::int64_t row = 0; row < state.range(0); ++row) {
      const XLOPER12& share = CellOf(table, row, kShare);
      if (CellOf(table, row, kFlag).val.xbool && CellOf(table, row, kDate).val.num >= 40'000 &&
          EqualsPlainly(CellOf(table, row, kGroup), XTEXT("G0000007")) && IsNumberCell(share))
        sum += share.val.num;
    }
    benchmark::DoNotOptimize(sum);
  }
}

void AllSizes(benchmark::internal::Benchmark* benchmark) {
  for (const int rows : {1'000, 100'000, 1'000'000}) benchmark->Arg(rows);
  benchmark->Unit(benchmark::kMicrosecond);
}

BENCHMARK_CAPTURE(OneText, NumberOrder, kShare, XTEXT("<0.01"))->Apply(AllSizes);
BENCHMARK(PlainNumber)->Apply(AllSizes);
BENCHMARK(OneNumber)->Apply(AllSizes);
BENCHMARK_CAPTURE(OneText, TextEquality, kGroup, XTEXT("G0000007"))->Apply(AllSizes);
BENCHMARK(PlainText)->Apply(AllSizes);
BENCHMARK_CAPTURE(OneText, TextOrder, kGroup, XTEXT("<G0000007"))->Apply(AllSizes);
BENCHMARK_CAPTURE(OneText, Wildcard, kText, XTEXT("~K*5?7*3"))->Apply(AllSizes);
BENCHMARK(PlainWildcard)->Apply(AllSizes);
BENCHMARK_CAPTURE(OneText, Expression, kText, XTEXT("~~^K.*5.7.*3$"))->Apply(AllSizes);
BENCHMARK_CAPTURE(OneText, TypeTest, kShare, XTEXT("#EMPTY"))->Apply(AllSizes);
BENCHMARK(OneBoolean)->Apply(AllSizes);
BENCHMARK_CAPTURE(OneText, AllRows, kText, XTEXT("#TXT"))->Apply(AllSizes);
BENCHMARK_CAPTURE(List, TenNumbers, 10, false)->Apply(AllSizes);
BENCHMARK_CAPTURE(List, TenTexts, 10, true)->Apply(AllSizes);
BENCHMARK_CAPTURE(List, ManyNumbers, 100'000, false)->Apply(AllSizes);
BENCHMARK(PlainListOfNumbers)->Apply(AllSizes);
BENCHMARK_CAPTURE(List, ManyTexts, 100'000, true)->Apply(AllSizes);
BENCHMARK(PlainListOfTexts)->Apply(AllSizes);
BENCHMARK(OrGroups)->Apply(AllSizes);
BENCHMARK(SumOfThree)->Apply(AllSizes);
BENCHMARK(PlainSumOfThree)->Apply(AllSizes);
BENCHMARK_CAPTURE(Sorted, OneColumn, 1)->Apply(AllSizes);
BENCHMARK_CAPTURE(Sorted, TwoColumns, 2)->Apply(AllSizes);
BENCHMARK_CAPTURE(Sorted, EighteenColumns, 18)->Apply(AllSizes);

}  // namespace
}  // namespace quillmere
