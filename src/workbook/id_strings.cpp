// The worksheet's side of the row IDs by text.
//
// Serves Put_RowIDString, Get_RowIdString, Erase_RowIDString.
#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "frame/convert/argument.h"
#include "frame/convert/cell_text.h"
#include "frame/convert/convert_cell.h"
#include "frame/text/text_cut.h"
#include "frame/values/array_builder.h"
#include "frame/values/cell_copy.h"
#include "implementations/workbook.h"
#include "workbook/id_stores.h"

namespace quillmere::workbook {
namespace {

/// Reads IDs from cells, each into the room of the one before. Texts are copied, since Excel's memory is not read while
/// a store is locked.
class RowIdReader {
 public:
  /// The ID that a cell stands for, until the next is read; empty for an empty cell and an error.
  XStringView Read(const XLOPER12& cell) {
    const std::uint32_t type = CellType(cell);
    if (type == xltypeErr || type == xltypeMissing) return {};
    const XStringView text = TextForm(cell, number_);
    if (type != xltypeStr) return text;
    AssignText(copy_, text);
    return copy_;
  }

 private:
  NumberTextBuffer number_;
  XString copy_;
};

}  // namespace

void Functions::PutRowIds(CXlOper& result, const CXlArgument& vCellIDString) {
  result.SetError(xlerrValue);
  const CXlCells cells = vCellIDString.Value().Cells();
  if (cells.columns < 2) return;
  RowIdReader ids;
  for (std::int32_t row = 0; row < cells.rows; ++row) {
    if (IsErrorCell(cells.At(row, 0))) return;
    const XStringView id = ids.Read(cells.At(row, 0));
    if (id.empty()) break;
    std::int32_t number = 0;
    if (!ConvertCellTo<ElementKind::kInteger>(cells.At(row, 1), TextReading::kPlain, number)) return;
    if (!StoreRowId(id, number)) return;
  }
  result.SetNumber(1);
}

void Functions::GetRowIds(CXlOper& result) {
  std::vector<std::pair<XString, std::int32_t>> entries = TextStoreEntries();
  if (entries.empty()) {
    result.SetError(xlerrNA);
    return;
  }
  std::ranges::sort(entries);
  CXlArrayBuilder builder(static_cast<std::int64_t>(entries.size()), 2);
  std::int64_t row = 0;
  for (const auto& [id, number] : entries) {
    // An ID that the lookups have put together may be longer than a cell takes.
    builder.PutText(row, 0, CutText(id, kXlMaxText));
    builder.PutNumber(row++, 1, number);
  }
  result = builder.Finish();
}

void Functions::EraseRowIds(CXlOper& result, const CXlArgument& erasedIDs) {
  const CXlCells cells = erasedIDs.Value().Cells();
  std::int64_t erased = 0;
  RowIdReader ids;
  for (std::int64_t i = 0; i < cells.Count(); ++i) {
    const XStringView id = ids.Read(cells.first[i]);
    if (!id.empty() && EraseRowId(id)) ++erased;
  }
  result.SetNumber(static_cast<double>(erased));
}

}  // namespace quillmere::workbook
