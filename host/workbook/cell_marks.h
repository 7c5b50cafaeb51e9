// A mark a cell: a bit, where there are any.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "host/values/area.h"

namespace qcalc {

/// Row and column, zero-based; ordered by rows, then columns.
struct CellPosition {
  std::int32_t row = 0;
  std::int32_t column = 0;
  auto operator<=>(const CellPosition&) const = default;
};

/// A set of cells of one sheet, to be asked for areas: what holds none is passed over in steps of up to 4,096 rows.
/// Any number of threads may ask while none writes.
class CellMarks {
 public:
  void Set(const Area& area, bool marked);
  bool Has(CellPosition position) const { return FindFirst(Area::OfCell(position.row, position.column)).has_value(); }
  /// The first or the last marked cell of the area, by rows, then columns; nothing when there is none.
  std::optional<CellPosition> FindFirst(const Area& area) const;
  std::optional<CellPosition> FindLast(const Area& area) const;
  bool IsEmpty() const { return count_ == 0; }

 private:
  static constexpr std::int32_t kWordRows = 64;
  static constexpr std::int32_t kPageRows = kWordRows * 64;
  struct Page {
    std::array<std::uint64_t, 64> words{};
    std::uint64_t used = 0;  ///< the words that are not zero

    int First(std::int32_t first, std::int32_t last) const;
    int Last(std::int32_t first, std::int32_t last) const;
    std::int64_t Set(std::int32_t first, std::int32_t last, bool marked);
  };
  struct Column {
    std::vector<std::unique_ptr<Page>> pages;
    std::int64_t count = 0;
  };

  static std::int32_t FirstRow(const Column& column, std::int32_t first, std::int32_t last);
  static std::int32_t LastRow(const Column& column, std::int32_t first, std::int32_t last);

  std::map<std::int32_t, Column> columns_;
  std::int64_t count_ = 0;
};

}  // namespace qcalc
