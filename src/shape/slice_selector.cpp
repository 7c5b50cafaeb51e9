#include "shape/slice_selector.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "frame/callbacks/same_sheet.h"
#include "frame/convert/convert_cell.h"
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
    const CXlOper place =
        selector.Type() == xltypeSRef ? CXlOper::Reference(area) : CXlOper::Reference(selector.Sheet(), {&area, 1});
    areas.push_back(TableView::OfUsedRows(place).ReadAll());
  }
  return areas;
}

std::span<const XLOPER12> CellsOf(const CXlOper& values) {
  const CXlCells cells = values.Cells();
  return {cells.first, static_cast<std::size_t>(cells.Count())};
}

/// Where the labels among the items stand. The table is read only where there are some.
SliceLabels FindLabels(const std::vector<CXlOper>& items, const TableView& table, SliceAxis axis) {
  SliceLabels labels;
  for (const CXlOper& area : items)
    for (const XLOPER12& item : CellsOf(area))
      if (IsTextCell(item)) labels.Want(item);
  if (!labels.AreWanted()) return labels;
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

/// Makes a slice of the items of a selector.
class ItemPicker {
 public:
  ItemPicker(Slice& slice, std::int32_t length, SliceLabels& labels) noexcept
      : slice_(slice), length_(length), labels_(labels) {}

  /// Picks what the next item says; what is wrong with it, if anything is.
  XStringView Take(const XLOPER12& item) {
    const std::uint32_t type = CellType(item);
    if (type == xltypeNum || type == xltypeInt) return TakeNumber(CellNumber(item));
    if (hasMark_) PickUpTo(length_ - 1);
    if (type != xltypeStr) return kInvalidItem;
    for (const PlaceRun& run : labels_.PlacesOf(item)) slice_.Append(run);
    return {};
  }

  /// Behind the last item.
  void Finish() {
    if (hasMark_) PickUpTo(length_ - 1);
  }

 private:
  XStringView TakeNumber(double number) {
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
      PickUpTo(static_cast<std::int32_t>(at));
    else
      slice_.Append({static_cast<std::int32_t>(at), 1});
    return {};
  }

  void PickUpTo(std::int32_t last) {
    const std::int32_t first = slice_.Count() == 0 ? 0 : slice_.Last() + 1;
    slice_.Append({first, std::max(last - first + 1, 0)});
    hasMark_ = false;
  }

  Slice& slice_;
  std::int32_t length_;
  SliceLabels& labels_;
  bool hasMark_ = false;  ///< a range has begun, its end is the next item's to say
};

/// Picks what the items say; what is wrong with one of them, if anything is.
XStringView PickItems(Slice& slice, const TableView& table, SliceAxis axis, const CXlOper& selector) {
  const std::vector<CXlOper> items = ReadItems(selector);
  SliceLabels labels = FindLabels(items, table, axis);
  ItemPicker picker(slice, Length(table, axis), labels);
  for (const CXlOper& area : items)
    for (const XLOPER12& item : CellsOf(area))
      if (const XStringView fault = picker.Take(item); !fault.empty()) return fault;
  picker.Finish();
  return {};
}

}  // namespace

std::optional<Slice> SelectSlice(CXlOper& result, const TableView& table, SliceAxis axis, const CXlArgument& selector,
                                 XStringView messagePrefix) {
  Slice slice(axis == SliceAxis::kRows ? kXlMaxRows : kXlMaxColumns);
  const CXlOper& value = selector.Value();
  const bool isByPlace = value.IsReference() && table.IsReference();
  XStringView fault;
  if (isByPlace)
    PickCovered(slice, table, axis, value);
  else
    fault = PickItems(slice, table, axis, value);
  if (fault.empty() && slice.Count() == 0) fault = isByPlace ? kNotCovered : kOutside;
  if (fault.empty()) return slice;

  XString text = XTEXT("#Error: ");
  text += messagePrefix;
  text += axis == SliceAxis::kRows ? XTEXT("Rows") : XTEXT("Cols");
  text += fault;
  result.SetText(text);
  return std::nullopt;
}

}  // namespace quillmere::shape
