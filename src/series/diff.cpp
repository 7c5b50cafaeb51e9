// Differences from the values before.
//
// Serves DIFF.
#include <algorithm>
#include <utility>

#include "implementations/series.h"
#include "series/series_run.h"

namespace quillmere::series {
namespace {

/// A number less that which came so many places before; #N/A where there is none.
class LaggedDifference final : public SeriesMethod {
 public:
  /// By so many places, one at least, in series of that length.
  LaggedDifference(std::int32_t lag, std::int32_t length) noexcept : lag_(std::min(lag, length)) {}

  SeriesEdges Edges() const noexcept override { return {lag_, 0, ErrorCell(xlerrNA)}; }
  std::size_t StateSize() const noexcept override { return static_cast<std::size_t>(lag_); }
  void Run(std::int32_t place, std::span<double> numbers, double* state) const noexcept override {
    std::int32_t oldest = place % lag_;
    for (double& number : numbers) {
      const double before = std::exchange(state[oldest], number);
      number -= before;
      if (++oldest == lag_) oldest = 0;
    }
  }

 private:
  std::int32_t lag_;
};

}  // namespace

void Functions::Differences(CXlOper& result, const CXlArgument& rangeArray,
                            const CXlScalarArgument<ElementKind::kInteger>& lag,
                            const CXlScalarArgument<ElementKind::kBoolean>& down) {
  result.SetError(xlerrValue);
  const SeriesTable table(rangeArray);
  std::int32_t places = 0;
  const bool isDown = table.ReadBehind([&] {
    places = lag.Read();
    return down.Read();
  });
  if (places < 1) return table.CheckNumbers();
  const SeriesShape shape = table.Shape(isDown);
  result = RunSeries(table, shape, LaggedDifference(places, shape.Length()));
}

}  // namespace quillmere::series
