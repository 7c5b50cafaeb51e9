// A criterion made ready for a whole column of cells.
#pragma once

#include <cstdint>
#include <memory>

#include "criteria/criterion.h"
#include "criteria/criterion_list.h"
#include "table/cell_line.h"

namespace quillmere::criteria {

/// Rows of a batch by their places in it.
using BatchPlace = std::uint16_t;

/// What one criterion, or one list, makes of the cells of a column. What the type of a cell alone decides is worked
/// out beforehand.
class ColumnTest {
 public:
  ColumnTest(const ColumnTest&) = delete;
  ColumnTest& operator=(const ColumnTest&) = delete;
  virtual ~ColumnTest() = default;

  /// What a row costs, roughly, beside a comparison of numbers.
  double Cost() const noexcept { return cost_; }

  /// Of `count` ascending places in a stretch of a column keeps those, in front of the list, whose cells meet the
  /// criterion, and returns how many there are. What is no single cell is "Bad XLOPER type".
  virtual std::int32_t Keep(const CellLine& cells, BatchPlace* places, std::int32_t count) const = 0;

 protected:
  explicit ColumnTest(double cost) noexcept : cost_(cost) {}

 private:
  double cost_;
};

/// The test of a prepared criterion; its own from then on.
std::unique_ptr<const ColumnTest> MakeColumnTest(Criterion&& criterion);

/// The test of a list whose elements are prepared. Numbers, and texts that are compared, cost no more for many
/// elements than for a few.
std::unique_ptr<const ColumnTest> MakeColumnTest(CriterionList&& list);

}  // namespace quillmere::criteria
