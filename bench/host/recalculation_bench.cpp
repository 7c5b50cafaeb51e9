// What a recalculation costs beside the same numbers in a plain loop: formulas that read their neighbour, a chain in
// which each reads the one above it, and sums of ten cells. Entering formulas that differ by their place alone.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "host/calculation/recalculation.h"
#include "host/formulas/formula_pool.h"

namespace qcalc {
namespace {

/// Numbers in column A and a formula in each row of column B.
class Model {
 public:
  explicit Model(std::int32_t rows) : rows_(rows), sheet_(workbooks_.BookNamed(XTEXT("B")).SheetNamed(XTEXT("S"))) {
    for (std::int32_t row = 0; row < rows + 10; ++row) sheet_.Cells().Set(row, 0, CellView::Number(row % 7));
  }

  template <typename TextOfRow>
  void Enter(TextOfRow&& textOfRow) {
    FormulaPool pool(FormulaDialect::kBook);
    for (std::int32_t row = 0; row < rows_; ++row)
      sheet_.PutFormula({row, 1}, *pool.Enter(textOfRow(row), row, 1), FormulaForm::kSingle, Area::OfCell(row, 1));
  }

  void Calculate(benchmark::State& state) {
    EvaluationContext context;
    context.workbooks = &workbooks_;
    for (auto _ : state) {
      Recalculate(workbooks_, context);
      state.PauseTiming();
      for (std::int32_t row = 0; row < rows_; ++row) sheet_.MarkDirty({row, 1}, true);
      state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * rows_);
  }

 private:
  std::int32_t rows_;
  Workbooks workbooks_;
  Sheet& sheet_;
};

std::int32_t Rows(const benchmark::State& state) { return static_cast<std::int32_t>(state.range(0)); }
std::string Cell(char column, std::int32_t row) { return column + std::to_string(row + 1); }

void Sizes(benchmark::internal::Benchmark* benchmark) { benchmark->Arg(1000)->Arg(100'000)->Arg(1'000'000); }

void PlainLoop(benchmark::State& state) {
  const std::vector<double> numbers(static_cast<std::size_t>(Rows(state)), 3);
  std::vector<double> results(numbers.size());
  for (auto _ : state) {
    for (std::size_t i = 0; i < numbers.size(); ++i) results[i] = numbers[i] * 2 + 1;
    benchmark::DoNotOptimize(results.data());
  }
  state.SetItemsProcessed(state.iterations() * Rows(state));
}
BENCHMARK(PlainLoop)->Apply(Sizes);

void Neighbours(benchmark::State& state) {
  Model model(Rows(state));
  model.Enter([](std::int32_t row) { return Cell('A', row) + "*2+1"; });
  model.Calculate(state);
}
BENCHMARK(Neighbours)->Apply(Sizes);

void Chain(benchmark::State& state) {
  Model model(Rows(state));
  model.Enter([](std::int32_t row) { return row == 0 ? "A1" : Cell('B', row - 1) + "+" + Cell('A', row); });
  model.Calculate(state);
}
BENCHMARK(Chain)->Apply(Sizes);

void SumsOfTen(benchmark::State& state) {
  Model model(Rows(state));
  model.Enter([](std::int32_t row) { return "SUM(" + Cell('A', row) + ":" + Cell('A', row + 9) + ")"; });
  model.Calculate(state);
}
BENCHMARK(SumsOfTen)->Apply(Sizes);

void Entering(benchmark::State& state) {
  for (auto _ : state) {
    Model model(Rows(state));
    model.Enter([](std::int32_t row) { return Cell('A', row) + "*2+1"; });
  }
  state.SetItemsProcessed(state.iterations() * Rows(state));
}
BENCHMARK(Entering)->Apply(Sizes);

}  // namespace
}  // namespace qcalc
