#include "table/column_selector.h"

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <utility>

#include "frame/callbacks/callbacks.h"
#include "frame/convert/convert_cell.h"
#include "frame/text/fold_case.h"
#include "table/cell_hash.h"

namespace quillmere {
namespace {

constexpr std::int32_t kNone = 0;  ///< no column; columns count from 1

// Both searches look through a table's first row for columns, or through its first column for rows.

/// Searches labels by Excel's rules in a reference.
class ExcelLabelSearch {
 public:
  explicit ExcelLabelSearch(CXlOper header) : header_(std::move(header)) {}

  std::int32_t Find(const XLOPER12& label) const {
    const CXlOper position = CallExcelOrValueError(xlfMatch, CXlOper::BorrowCell(label), header_, IntegerCell(0));
    std::int32_t column = kNone;
    if (position.IsNumber() || position.IsInteger()) TruncateToInteger(position.AsNumber(), column);
    return column;
  }

 private:
  CXlOper header_;
};

struct FoldedHash {
  std::size_t operator()(XStringView text) const { return HashText<TextCase::kIgnored>(text); }
};

struct FoldedEqual {
  bool operator()(XStringView a, XStringView b) const { return EqualFolded(a, b); }
};

/// Searches labels in an array. An index is made only for so many labels that it pays.
class OwnLabelSearch {
 public:
  /// `stride` cells lie from one header cell to the next.
  OwnLabelSearch(const XLOPER12* header, std::int32_t count, std::ptrdiff_t stride, std::int32_t labels)
      : header_(header), count_(count), stride_(stride), isIndexed_(labels > kFewLabels) {
    for (std::int32_t place = 0; isIndexed_ && place < count_; ++place)
      if (IsTextCell(At(place))) index_.try_emplace(TextOf(At(place)), place + 1);
  }

  std::int32_t Find(const XLOPER12& label) const {
    const XStringView text = TextOf(label);
    if (isIndexed_) {
      const auto found = index_.find(text);
      return found == index_.end() ? kNone : found->second;
    }
    for (std::int32_t place = 0; place < count_; ++place)
      if (IsTextCell(At(place)) && EqualFolded(TextOf(At(place)), text)) return place + 1;
    return kNone;
  }

 private:
  static constexpr std::int32_t kFewLabels = 16;

  const XLOPER12& At(std::int32_t place) const { return header_[place * stride_]; }

  const XLOPER12* header_;
  std::int32_t count_;
  std::ptrdiff_t stride_;
  bool isIndexed_;
  std::unordered_map<XStringView, std::int32_t, FoldedHash, FoldedEqual> index_;  ///< the first place of each label
};

template <class LabelSearch>
SelectedColumns Select(const CXlCells& selector, std::int32_t count, const LabelSearch& labels) {
  SelectedColumns selected;
  selected.columns.reserve(selector.columns);
  for (std::int32_t entry = 0; entry < selector.columns; ++entry) {
    const XLOPER12& cell = selector.At(0, entry);
    const std::uint32_t type = TypeOf(cell);
    std::int32_t column = kNone;
    if (type == xltypeStr) {
      selected.headerUsed = true;
      column = labels.Find(cell);
    } else if (type == xltypeNum || type == xltypeInt) {
      TruncateToInteger(CellNumber(cell), column);
    }
    if (column < 1 || column > count) selected.failed = true;
    if (!selected.failed) selected.columns.push_back(column);
  }
  return selected;
}

}  // namespace

SelectedColumns SelectColumns(const CXlCells& selector, const TableView& table) {
  const std::int32_t count = table.Columns();
  if (table.IsReference()) return Select(selector, count, ExcelLabelSearch(table.Part(0, 0, 1, count)));
  return Select(selector, count, OwnLabelSearch(table.Cells().first, count, 1, selector.columns));
}

SelectedColumns SelectRows(const CXlCells& selector, const TableView& table) {
  const std::int32_t count = table.Rows();
  if (table.IsReference()) return Select(selector, count, ExcelLabelSearch(table.Part(0, 0, count, 1)));
  return Select(selector, count, OwnLabelSearch(table.Cells().first, count, table.Columns(), selector.columns));
}

}  // namespace quillmere
