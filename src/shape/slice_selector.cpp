#include "shape/slice_selector.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "frame/callbacks/same_sheet.h"
#include "frame/convert/convert_cell.h"
#include "frame/values/reference.h"
#include "shape/slice_labels.h"
#include "table/row_blocks.h"

namespace quillmere::shape {
namespace {

// What a failed selector says behind the axis.
constexpr XStringView kOutside = XTEXT(" outside bounds of Range_Array");
constexpr XStringView kInvalidItem = XTEXT(" invalid Row/Column item");
constexpr XStringView kNotCovered = XTEXT(" - Union of References do not Intersect Range_Array");

std::int32_t Length(const TableView& table, SliceAxis axis) {
  return axis == SliceAxis::kRows ? table.Rows() : table.Columns();
}

/// The first and last row, or column, of an area on its sheet.
std::pair<std::int32_t, std::int32_t> Reach(const XLREF12& area, SliceAxis axis) {
  return axis == SliceAxis::kRows ? std::pair(area.rwFirst, area.rwLast) : std::pair(area.colFirst, area.colLast);
}

/// What the areas of `selector` cover of a table that is a reference.
void PickCovered(Slice& slice, const TableView& table, SliceAxis axis, const CXlOper& selector) {
  const CXlOper whole = table.Part(0, 0, table.Rows(), table.Columns());
  if (!AreOnSameSheet(selector, whole)) return;
  const auto [first, last] = Reach(whole.Areas().front(), axis);
  std::vector<std::pair<std::int32_t, std::int32_t>> covered;
  for (const XLREF12& area : selector.Areas()) {
    const auto [from, to] = Reach(area, axis);
    covered.emplace_back(std::max(from, first) - first, std::min(to, last) - first);
  }
  std::ranges::sort(covered);
  std::int32_t next = 0;  // behind all that is picked
  for (const auto& [from, to] : covered) {
    const std::int32_t begin = std::max(from, next);
    if (begin > to) continue;
    slice.Append({begin, to - begin + 1});
    next = to + 1;
  }
}

/// The cells of a selector that is read as values, one area after the other.
std::vector<CXlOper> ReadItems(const CXlOper& selector) {
  std::vector<CXlOper> areas;
  if (!selector.IsReference()) {
    areas.push_back(TableView(selector).ReadAll());
    return areas;
  }
  for (const XLREF12& area : selector.Areas()) {
    const CXlOper place = ReferenceOnSheetOf(selector, area);
    areas.push_back(TableView::OfUsedRows(place).ReadAll());
  }
  return areas;
}

std::span<const XLOPER12> CellsOf(const CXlOper& values) {
  const CXlCells cells = values.Cells();
  return {cells.first, static_cast<std::size_t>(cells.Count())};
}

/// Where the labels among the items stand.
SliceLabels FindLabels(std::span<const CXlOper> items, const TableView& table, SliceAxis axis) {
  SliceLabels labels;
  for (const CXlOper& area : items)
    for (const XLOPER12& item : CellsOf(area))
      if (IsTextCell(item)) labels.Want(item);
  if (axis == SliceAxis::kColumns) {
    const CXlOper headers = table.SomeRows(0, 1).ReadAll();
    labels.LookAt(RowLine(headers.Cells(), 0), 0);
    return labels;
  }
  constexpr std::int32_t kFirstColumn[] = {0};
  for (RowBlocks blocks(table, kFirstColumn); blocks.Next();) {
    CellLine cells = blocks.Column(0);
    cells.count = blocks.Rows();
    labels.LookAt(cells, blocks.FirstRow());
  }
  return labels;
}

/// Picks what the items of a selector say.
class ItemPicker {
 public:
  ItemPicker(const TableView& table, SliceAxis axis, std::span<const CXlOper> items) noexcept
      : table_(table), axis_(axis), items_(items), length_(Length(table, axis)) {}

  /// What is wrong with one of the items, if anything is; the slice is then no good.
  XStringView PickInto(Slice& slice) {
    for (const CXlOper& area : items_)
      for (const XLOPER12& item : CellsOf(area)) {
        // Most items are positions from the first on, and there may be a million.
        if (IsNumberCell(item) && item.val.num >= 1 && item.val.num <= length_ && !hasMark_) [[likely]]
          slice.Append({static_cast<std::int32_t>(item.val.num) - 1, 1});
        else if (const XStringView fault = Take(item, slice); !fault.empty())
          return fault;
      }
    if (hasMark_) PickUpTo(length_ - 1, slice);
    return {};
  }

 private:
  XStringView Take(const XLOPER12& item, Slice& slice) {
    const std::uint32_t type = CellType(item);
    if (type == xltypeNum || type == xltypeInt) return TakeNumber(CellNumber(item), slice);
    if (hasMark_) PickUpTo(length_ - 1, slice);
    if (type != xltypeStr) return kInvalidItem;
    if (!labels_) labels_ = FindLabels(items_, table_, axis_);
    for (const PlaceRun& run : labels_->PlacesOf(item)) slice.Append(run);
    return {};
  }

  XStringView TakeNumber(double number, Slice& slice) {
    std::int32_t place = 0;
    if (!TruncateToInteger(number, place)) return kOutside;
    if (place == 0 && !hasMark_) {
      hasMark_ = true;
      return {};
    }
    // Behind a mark 0 is the last one, as -1 is.
    const std::int64_t at = place > 0 ? std::int64_t{place} - 1 : std::int64_t{length_} + (place == 0 ? -1 : place);
    if (at < 0 || at >= length_) return kOutside;
    if (hasMark_)
      PickUpTo(static_cast<std::int32_t>(at), slice);
    else
      slice.Append({static_cast<std::int32_t>(at), 1});
    return {};
  }

  void PickUpTo(std::int32_t last, Slice& slice) {
    const std::int32_t first = slice.Count() == 0 ? 0 : slice.Last() + 1;
    slice.Append({first, std::max(last - first + 1, 0)});
    hasMark_ = false;
  }

  const TableView& table_;
  SliceAxis axis_;
  std::span<const CXlOper> items_;
  std::int32_t length_;
  bool hasMark_ = false;               ///< a range has begun, its end is the next item's to say
  std::optional<SliceLabels> labels_;  ///< once there is one
};

}  // namespace

std::optional<Slice> SelectSlice(CXlOper& result, const TableView& table, SliceAxis axis, const CXlArgument& selector,
                                 XStringView prefix) {
  Slice slice(axis == SliceAxis::kRows ? kXlMaxRows : kXlMaxColumns);
  const CXlOper& value = selector.Value();
  const bool isByPlace = value.IsReference() && table.IsReference();
  XStringView fault;
  if (isByPlace) {
    PickCovered(slice, table, axis, value);
  } else {
    const std::vector<CXlOper> items = ReadItems(value);
    fault = ItemPicker(table, axis, items).PickInto(slice);
  }
  if (fault.empty() && slice.Count() == 0) fault = isByPlace ? kNotCovered : kOutside;
  if (fault.empty()) return slice;

  XString text = XTEXT("#Error: ");
  text += prefix;
  text += axis == SliceAxis::kRows ? XTEXT(" Rows") : XTEXT(" Cols");
  text += fault;
  result.SetText(text);
  return std::nullopt;
}

}  // namespace quillmere::shape
