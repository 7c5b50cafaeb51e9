// The three rules by which a label is told from another. Which one holds hangs on who asks:
//
//   ExcelLabels    a column selector on a reference: Excel's MATCH, any case, wildcards and all
//   FoldedLabels   a column selector on an array: equal texts, A to Z without regard to case
//   UpperLabel     headers that blocks share, and labels among slices: equal when every letter is made a capital
#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <utility>

#include "frame/convert/cell_text.h"
#include "frame/text/fold_case.h"
#include "table/cell_hash.h"
#include "table/cell_line.h"

namespace quillmere {

/// In place of a label's place: none.
constexpr std::int32_t kNoPlace = -1;

/// Labels in a row or column of a sheet.
class ExcelLabels {
 public:
  /// `header` is a reference to the labels, one row or one column.
  explicit ExcelLabels(CXlOper header) noexcept : header_(std::move(header)) {}

  /// The 0-based place of the first label that Excel's MATCH takes for a text, or kNoPlace, also when MATCH fails.
  std::int32_t Find(const XLOPER12& label) const;

 private:
  CXlOper header_;
};

/// Labels in a row or column of an array. Cells that are no text match nothing.
class FoldedLabels {
 public:
  /// Where many labels are `wanted` an index is made, since it then pays. A view of `header`.
  FoldedLabels(const CellLine& header, std::int32_t wanted);

  /// The 0-based place of the first label that equals a text when both are folded, or kNoPlace.
  std::int32_t Find(const XLOPER12& label) const;

 private:
  struct Equal {
    bool operator()(XStringView a, XStringView b) const { return EqualFolded(a, b); }
  };

  CellLine header_;
  bool isIndexed_;
  std::unordered_map<XStringView, std::int32_t, TextHash<TextCase::kIgnored>, Equal>
      places_;  ///< the first place of each label
};

/// A cell as a label that is compared in capitals. One object serves many cells in turn.
class UpperLabel {
 public:
  /// The cell's text form, every letter of any alphabet made a capital; it lasts until the next is asked for. What is
  /// no single cell is "Bad XLOPER type".
  const XString& Of(const XLOPER12& cell);

 private:
  NumberTextBuffer number_;
  XString text_;
};

}  // namespace quillmere
