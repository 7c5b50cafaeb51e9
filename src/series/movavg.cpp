// Moving averages.
//
// Serves MOVAVG.
#include <algorithm>

#include "implementations/series.h"
#include "series/running_averages.h"
#include "series/starting_values.h"
#include "series/window_averages.h"

namespace quillmere::series {
namespace {

enum class AverageMethod : std::int32_t {
  kSimple = 1,
  kCentral = 2,
  kCumulative = 3,
  kWeighted = 4,
  kExponential = 5,
  kDoubleExponential = 6,
};

struct AverageOptions {
  bool isDown;
  std::int32_t startMethod;
  AverageMethod method;
  std::int32_t count;  ///< N

  bool HasWindow() const noexcept {
    return method == AverageMethod::kSimple || method == AverageMethod::kCentral || method == AverageMethod::kWeighted;
  }
  bool IsExponential() const noexcept {
    return method == AverageMethod::kExponential || method == AverageMethod::kDoubleExponential;
  }
};

/// What is wrong with the options; empty when nothing is.
XStringView FaultOf(const AverageOptions& options, const SeriesShape& shape) {
  if (options.method < AverageMethod::kSimple || options.method > AverageMethod::kDoubleExponential)
    return XTEXT("#ERROR: Method must be >=1 and <=6");
  if (options.method != AverageMethod::kCumulative && options.count < 2)
    return XTEXT("#ERROR: Number of Items per average must be >1");
  if (options.HasWindow() && options.count >= shape.Length())
    return shape.isDown ? XTEXT("#ERROR: Number of Items per average must be < Number of Rows")
                        : XTEXT("#ERROR: Number of Items per average must be < Number of Columnns");
  if (options.IsExponential() && options.startMethod > shape.Length())
    return XTEXT("#ERROR: StartExp must be <= Number of data points in the series");
  return {};
}

CXlOper RunExponential(const SeriesTable& table, const SeriesShape& shape, const AverageOptions& options) {
  const double alpha = SmoothingConstant(options.count);
  ScratchArray<double> starts;
  if (options.startMethod < 0)
    starts = Backcasts(table, shape, alpha);
  else if (options.startMethod != 1)
    starts = FirstAverages(table, shape,
                           options.startMethod == 0 ? std::min(options.count, shape.Length()) : options.startMethod);
  const bool isDouble = options.method == AverageMethod::kDoubleExponential;
  return RunSeries(table, shape, ExponentialAverage(alpha, isDouble, {starts.data(), starts.size()}));
}

CXlOper RunAverages(const SeriesTable& table, const SeriesShape& shape, const AverageOptions& options) {
  switch (options.method) {
    case AverageMethod::kSimple:
      return RunSeries(table, shape, WindowAverage(options.count, false));
    case AverageMethod::kCentral:
      return RunSeries(table, shape, WindowAverage(options.count, true));
    case AverageMethod::kCumulative:
      return RunSeries(table, shape, CumulativeAverage());
    case AverageMethod::kWeighted:
      return RunSeries(table, shape, WeightedWindowAverage(options.count));
    default:
      return RunExponential(table, shape, options);
  }
}

}  // namespace

void Functions::MovingAverages(CXlOper& result, const CXlArgument& rangeArray,
                               const CXlScalarArgument<ElementKind::kInteger>& count,
                               const CXlScalarArgument<ElementKind::kInteger>& method,
                               const CXlScalarArgument<ElementKind::kBoolean>& down,
                               const CXlScalarArgument<ElementKind::kInteger>& startMethod) {
  const SeriesTable table(rangeArray);
  const AverageOptions options = table.ReadBehind([&] {
    const bool isDown = down.Read();
    const std::int32_t start = startMethod.Read();
    return AverageOptions{isDown, start, AverageMethod{method.Read()}, count.Read()};
  });
  const SeriesShape shape = table.Shape(options.isDown);
  const XStringView fault = FaultOf(options, shape);
  if (!fault.empty()) {
    table.CheckNumbers();
    result.SetText(fault);
    return;
  }
  result = RunAverages(table, shape, options);
}

}  // namespace quillmere::series
