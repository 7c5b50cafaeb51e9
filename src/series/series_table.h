// The numbers of series, in the cells where they stand.
#pragma once

#include <limits>
#include <optional>

#include "frame/convert/argument.h"
#include "frame/errors/attempt.h"
#include "series/series_shape.h"
#include "table/cell_line.h"
#include "table/table_view.h"

namespace quillmere::series {

/// Numbers are scaled down before they are summed when one is larger than kMostUnscaled. No sum of as many as a sheet
/// has rows overflows then, nor one with as large weights, and an average is there whatever its sum would be.
inline constexpr double kScale = 0x1p-44;
inline constexpr double kMostUnscaled = std::numeric_limits<double>::max() * kScale;

/// Reads cells as numbers into `to`, which has room for them: an empty cell is 0, a boolean 1 or 0, a text what it
/// reads as. Anything else is CXlConversionException, whose message says `name`. True when one is larger than
/// kMostUnscaled. `ahead` is how far off the cells are that are read next.
bool ReadNumbers(const CellLine& cells, XStringView name, std::ptrdiff_t ahead, double* to);

/// The argument that holds the series. Its cells are looked at once, when the series are walked; what is wrong with one
/// of them goes before what is wrong with other arguments all the same.
class SeriesTable {
 public:
  /// CXlErrorException with #VALUE! for an argument that is left out, for a single empty cell, and for a reference that
  /// is no table or whose only cell cannot be read. A tall reference is cut to the rows that its sheet uses.
  explicit SeriesTable(const CXlArgument& argument);
  SeriesTable(const SeriesTable&) = delete;
  SeriesTable& operator=(const SeriesTable&) = delete;

  const TableView& View() const noexcept { return view_; }
  /// Of the argument, for messages.
  XStringView Name() const noexcept { return name_; }
  SeriesShape Shape(bool isDown) const noexcept { return SeriesShape::Of(view_.Rows(), view_.Columns(), isDown); }

  /// Raises what ReadNumbers does for the first cell that is no number.
  void CheckNumbers() const;

  /// What `read` makes of other arguments. When that fails all cells are looked at first.
  template <class Read>
  auto ReadBehind(const Read& read) const {
    std::optional<decltype(read())> value;
    if (!RunsWithout<CXlRuntimeException>([&] { value = read(); })) {
      CheckNumbers();
      value = read();
    }
    return *value;
  }

 private:
  CXlOper onlyCell_;
  TableView view_;
  XStringView name_;
};

}  // namespace quillmere::series
