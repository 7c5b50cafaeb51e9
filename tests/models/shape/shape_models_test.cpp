// The functions that cut, extend, insert into and repeat arrays, and the totals, on arrays and on references.
#include <gtest/gtest.h>

#include "tests/models/shape/model.h"

namespace qcalc::shape {
namespace {

TEST(ShapeModels, Slices) { models::TryFieldCalls(DrawSlices, ExpectedSlices); }

TEST(ShapeModels, Reshapes) { models::TryFieldCalls(DrawReshape, ExpectedReshape); }

TEST(ShapeModels, Totals) { models::TryFieldCalls(DrawTotals, ExpectedTotals, {1e-12, 1e-12}); }

}  // namespace
}  // namespace qcalc::shape
