// Moving averages, running totals, roll-forwards, the Gini coefficient and interpolations, on arrays and on references.
#include <gtest/gtest.h>

#include "tests/models/series/model.h"

namespace qcalc::series {
namespace {

TEST(SeriesModels, Averages) { models::TryFieldCalls(DrawAverages, ExpectedAverages); }

TEST(SeriesModels, RunningTotals) { models::TryFieldCalls(DrawRunning, ExpectedRunning); }

TEST(SeriesModels, RollForwards) { models::TryFieldCalls(DrawCorkscrew, ExpectedCorkscrew); }

TEST(SeriesModels, Gini) { models::TryFieldCalls(DrawGini, ExpectedGini); }

TEST(SeriesModels, Interpolations) { models::TryFieldCalls(DrawInterpolation, ExpectedInterpolation); }

}  // namespace
}  // namespace qcalc::series
