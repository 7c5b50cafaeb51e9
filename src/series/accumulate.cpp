// Running totals.
//
// Serves ACCUMULATE.
#include "implementations/series.h"
#include "series/series_run.h"
#include "table/compensated_sum.h"

namespace quillmere::series {
namespace {

/// The sum of a start and all numbers so far.
class RunningTotal final : public SeriesMethod {
 public:
  explicit RunningTotal(double start) noexcept : start_(start) {}

  std::size_t StateSize() const noexcept override { return 2; }
  double Start(std::int32_t /*series*/) const noexcept override { return start_; }
  void Run(std::int32_t /*place*/, std::span<double> numbers, double* state) const noexcept override {
    double sum = state[0];
    double lost = state[1];
    for (double& number : numbers) {
      CompensatedSum::AddTo(sum, lost, number);
      number = sum + lost;
    }
    state[0] = sum;
    state[1] = lost;
  }

 private:
  double start_;
};

}  // namespace

void Functions::RunningTotals(CXlOper& result, const CXlArgument& rangeArray,
                              const CXlScalarArgument<ElementKind::kBoolean>& down,
                              const CXlScalarArgument<ElementKind::kNumber>& start) {
  const SeriesTable table(rangeArray);
  double first = 0;
  const bool isDown = table.ReadBehind([&] {
    const bool runsDown = down.Read();
    first = start.Read();
    return runsDown;
  });
  result = RunSeries(table, table.Shape(isDown), RunningTotal(first));
}

}  // namespace quillmere::series
