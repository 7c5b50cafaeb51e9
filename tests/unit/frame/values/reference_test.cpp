#include "frame/values/reference.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <limits>

namespace quillmere {
namespace {

using Move = bool (*)(XLREF12&, std::int64_t, std::int64_t, const SheetLimits&) noexcept;

constexpr std::int64_t kHuge = std::numeric_limits<std::int64_t>::max();

TEST(Reference, MovesAndGrowsWithinTheSheetOfItsVersion) {
  const struct {
    Move move;
    XLREF12 area;
    std::int64_t rows, columns;
    int version;
    XLREF12 moved;  ///< as before, where it would leave the sheet
  } cases[] = {
      {OffsetArea, {10, 20, 3, 4}, -10, 2, 16, {0, 10, 5, 6}},
      {OffsetArea, {20, 10, 4, 3}, 1, 1, 16, {11, 21, 4, 5}},
      {OffsetArea, {0, 10, 5, 6}, 1'048'565, 16'377, 12, {1'048'565, 1'048'575, 16'382, 16'383}},
      {OffsetArea, {0, 10, 5, 6}, 1'048'566, 0, 12, {0, 10, 5, 6}},
      {OffsetArea, {0, 10, 5, 6}, 0, 16'378, 12, {0, 10, 5, 6}},
      {OffsetArea, {1, 10, 5, 6}, -2, 0, 12, {1, 10, 5, 6}},
      {OffsetArea, {1, 10, 5, 6}, kHuge, 0, 12, {1, 10, 5, 6}},
      {OffsetArea, {1, 10, 5, 6}, 0, -kHuge - 1, 12, {1, 10, 5, 6}},
      {OffsetArea, {65'534, 65'534, 0, 254}, 1, 1, 11, {65'535, 65'535, 1, 255}},
      {OffsetArea, {65'535, 65'535, 0, 255}, 1, 0, 8, {65'535, 65'535, 0, 255}},
      {OffsetArea, {16'383, 16'383, 0, 255}, 1, 0, 7, {16'383, 16'383, 0, 255}},
      {ResizeArea, {10, 20, 3, 4}, 1, 16'381, 16, {10, 10, 3, 16'383}},
      {ResizeArea, {10, 20, 3, 4}, 1, 16'382, 16, {10, 20, 3, 4}},
      {ResizeArea, {10, 20, 3, 4}, 0, 1, 16, {10, 20, 3, 4}},
      {ResizeArea, {10, 20, 3, 4}, -12, 1, 16, {10, 20, 3, 4}},
      {ResizeArea, {10, 20, 3, 4}, -kHuge - 1, 1, 16, {10, 20, 3, 4}},
      {ResizeArea, {10, 20, 3, 4}, -11, -2, 16, {0, 10, 2, 3}},
  };
  for (const auto& one : cases) {
    XLREF12 area = one.area;
    const bool moves = std::memcmp(&one.moved, &area, sizeof area) != 0;
    EXPECT_EQ(one.move(area, one.rows, one.columns, SheetLimitsOf(one.version)), moves) << one.rows << one.columns;
    EXPECT_EQ(std::memcmp(&area, &one.moved, sizeof area), 0) << one.rows << ", " << one.columns;
  }
}

}  // namespace
}  // namespace quillmere
