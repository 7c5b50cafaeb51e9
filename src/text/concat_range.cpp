// The cells of an array joined into one text.
//
// Serves CONCAT.RANGE.
#include <cstdint>

#include "frame/callbacks/callbacks.h"
#include "frame/convert/argument.h"
#include "frame/convert/cell_text.h"
#include "implementations/text.h"
#include "table/truth_value.h"
#include "text/bounded_text.h"
#include "text/prefetch_ahead.h"

namespace quillmere::text {
namespace {

/// What becomes of cells that are empty or hold a text of length zero.
struct BlankCells {
  bool areSkipped;
  XStringView replacement;  ///< where they are not
};

BlankCells ReadBlankCells(const CXlArgument& skipReplace) {
  const XLOPER12& cell = *skipReplace.Value().Cells().first;
  if (IsErrorCell(cell)) throw CXlErrorException(KnownErrorCode(cell.val.err));
  if (IsTextCell(cell)) return {false, TextOf(cell)};
  return {TruthOf(cell) == TruthValue::kTrue, {}};
}

/// Writes numbers, by the format where there is one.
class NumberWriter {
 public:
  explicit NumberWriter(const CXlArgument& format) {
    if (format.IsGiven()) format_ = CXlOper::BorrowCell(*format.Value().Cells().first);
  }

  /// The text of a cell that is no error, viewed until the next one is asked for. An error that Excel's TEXT answers
  /// with is CXlErrorException.
  XStringView Text(const XLOPER12& cell) {
    const bool isNumber = IsNumberCell(cell) || TypeOf(cell) == xltypeInt;
    if (!isNumber || format_.IsAbsent() || format_.IsEmpty()) return TextForm(cell, plain_);
    formatted_ = CallExcelOrValueError(xlfText, NumberCell(CellNumber(cell)), format_);
    if (formatted_.IsError()) throw CXlErrorException(formatted_.AsErrorCode());
    return formatted_.AsText();
  }

 private:
  CXlOper format_;
  NumberTextBuffer plain_;
  CXlOper formatted_;
};

/// Appends the items that cells make, with a divider between two. An error among them is CXlErrorException.
void AppendItems(BoundedText& joined, const CXlCells& cells, XStringView divider, NumberWriter& numbers,
                 const BlankCells& blanks) {
  bool isFirst = true;
  for (std::int64_t at = 0; at < cells.Count(); ++at) {
    PrefetchAhead(cells, at);
    const XLOPER12& cell = cells.first[at];
    if (IsErrorCell(cell)) throw CXlErrorException(KnownErrorCode(cell.val.err));
    const bool isText = IsTextCell(cell);
    const bool isBlank = isText ? TextOf(cell).empty() : TypeOf(cell) == xltypeNil || TypeOf(cell) == xltypeMissing;
    if (isBlank && blanks.areSkipped) continue;
    if (!isFirst && !divider.empty()) joined.Append(divider);
    isFirst = false;
    joined.Append(isBlank ? blanks.replacement : isText ? TextOf(cell) : numbers.Text(cell));
  }
}

}  // namespace

void Functions::ConcatRange(CXlOper& result, const CXlArgument& concatThis, const CXlArgument& divider,
                            const CXlArgument& numberFormat, const CXlArgument& blankSkipReplace,
                            const CXlArgument& lineStart, const CXlArgument& lineEnd) {
  const CXlCells cells = concatThis.Value().Cells();
  const XString between = divider.As<ElementKind::kString>();
  NumberWriter numbers(numberFormat);
  const BlankCells blanks = ReadBlankCells(blankSkipReplace);
  const XString before = lineStart.As<ElementKind::kString>();
  const XString behind = lineEnd.As<ElementKind::kString>();

  BoundedText joined;
  joined.Append(before);
  AppendItems(joined, cells, between, numbers, blanks);
  joined.Append(behind);
  result.SetText(joined.View());
}

}  // namespace quillmere::text
