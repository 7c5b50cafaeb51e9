#include "frame/values/reference.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <limits>

namespace quillmere {
namespace {

bool SameArea(const XLREF12& a, const XLREF12& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

TEST(Reference, LimitsFollowTheVersion) {
  EXPECT_EQ(SheetLimitsOf(7).lastRow, 16'383);
  EXPECT_EQ(SheetLimitsOf(8).lastRow, 65'535);
  EXPECT_EQ(SheetLimitsOf(11).lastColumn, 255);
  EXPECT_EQ(SheetLimitsOf(12).lastRow, 1'048'575);
  EXPECT_EQ(SheetLimitsOf(16).lastColumn, 16'383);
}

TEST(Reference, OffsetsStayOnTheSheet) {
  const SheetLimits limits = SheetLimitsOf(16);
  XLREF12 area{10, 20, 3, 4};
  EXPECT_TRUE(OffsetArea(area, -10, 2, limits));
  EXPECT_TRUE(SameArea(area, {0, 10, 5, 6}));
  EXPECT_TRUE(OffsetArea(area, 1'048'565, 16'377, limits));
  EXPECT_TRUE(SameArea(area, {1'048'565, 1'048'575, 16'382, 16'383}));
  const XLREF12 last = area;
  const std::int64_t huge = std::numeric_limits<std::int64_t>::max();
  EXPECT_FALSE(OffsetArea(area, 1, 0, limits));
  EXPECT_FALSE(OffsetArea(area, 0, 1, limits));
  EXPECT_FALSE(OffsetArea(area, -1'048'566, 0, limits));
  EXPECT_FALSE(OffsetArea(area, huge, 0, limits));
  EXPECT_FALSE(OffsetArea(area, 0, -huge - 1, limits));
  EXPECT_TRUE(SameArea(area, last));
  XLREF12 old{65'535, 65'535, 0, 255};
  EXPECT_FALSE(OffsetArea(old, 1, 0, SheetLimitsOf(11)));
  EXPECT_TRUE(OffsetArea(old, 1, 0, limits));
}

TEST(Reference, ResizesFromTheTopLeftCell) {
  const SheetLimits limits = SheetLimitsOf(16);
  XLREF12 area{10, 20, 3, 4};
  EXPECT_TRUE(ResizeArea(area, 1, 16'381, limits));
  EXPECT_TRUE(SameArea(area, {10, 10, 3, 16'383}));
  EXPECT_FALSE(ResizeArea(area, 1, 16'382, limits));
  EXPECT_FALSE(ResizeArea(area, 0, 1, limits));
  EXPECT_FALSE(ResizeArea(area, -12, 1, limits));
  EXPECT_FALSE(ResizeArea(area, std::numeric_limits<std::int64_t>::min(), 1, limits));
  EXPECT_TRUE(SameArea(area, {10, 10, 3, 16'383}));
  EXPECT_TRUE(ResizeArea(area, -11, -2, limits));
  EXPECT_TRUE(SameArea(area, {0, 10, 2, 3}));
}

TEST(Reference, OffsetNormalises) {
  XLREF12 area{20, 10, 4, 3};
  EXPECT_TRUE(OffsetArea(area, 1, 1, SheetLimitsOf(16)));
  EXPECT_TRUE(SameArea(area, {11, 21, 4, 5}));
}

}  // namespace
}  // namespace quillmere
