#include "excel/com/held_application_windows.h"
#include "excel/com/late_bound_windows.h"
#include "excel/used_range/ask_used_rows.h"
#include "frame/entry/callback_scope.h"

namespace quillmere {
namespace {

/// A member of a collection, by its name.
ComOutcome GetMember(IDispatch& owner, const XCHAR* collection, XStringView name, ComReference<IDispatch>& member) {
  ComReference<IDispatch> all;
  if (const ComOutcome got = GetObjectProperty(owner, collection, all, WhenBusy::kFail); !got) return got;
  ComVariant answer;
  const ComOutcome called = CallWithText(*all, XTEXT("Item"), name, answer, WhenBusy::kFail);
  return ReadObject(called, answer, member);
}

ComOutcome GetUsedRange(IDispatch& application, XStringView book, XStringView sheet, ComReference<IDispatch>& range) {
  ComReference<IDispatch> workbook;
  if (const ComOutcome got = GetMember(application, XTEXT("Workbooks"), book, workbook); !got) return got;
  ComReference<IDispatch> worksheet;
  if (const ComOutcome got = GetMember(*workbook, XTEXT("Worksheets"), sheet, worksheet); !got) return got;
  return GetObjectProperty(*worksheet, XTEXT("UsedRange"), range, WhenBusy::kFail);
}

/// `row` and `rows`: its first row, 1-based, and their number.
ComOutcome GetRows(IDispatch& range, ComVariant& row, ComVariant& rows) {
  if (const ComOutcome got = GetProperty(range, XTEXT("Row"), row, WhenBusy::kFail); !got) return got;
  ComReference<IDispatch> all;
  if (const ComOutcome got = GetObjectProperty(range, XTEXT("Rows"), all, WhenBusy::kFail); !got) return got;
  return GetProperty(*all, XTEXT("Count"), rows, WhenBusy::kFail);
}

}  // namespace

std::optional<UsedRows> AskUsedRows(XStringView sheet) {
  // `[Book1]Sheet1`: a sheet's name holds no bracket.
  const std::size_t bookEnd = sheet.rfind(XTEXT(']'));
  if (bookEnd == XStringView::npos || sheet.front() != XTEXT('[')) return std::nullopt;
  // From here on it is Excel's objects that run, the last counted references to them included.
  const CallbackScope host;
  const ComReference<IDispatch> application = HeldApplication().Get();
  if (!application) return std::nullopt;
  ComReference<IDispatch> range;
  ComVariant row;
  ComVariant rows;
  ComOutcome outcome = GetUsedRange(*application, sheet.substr(1, bookEnd - 1), sheet.substr(bookEnd + 1), range);
  if (outcome) outcome = GetRows(*range, row, rows);
  if (MeansVanished(outcome.result)) HeldApplication().Drop(application);
  if (!outcome) return std::nullopt;
  const std::optional<std::int32_t> first = row.Integer();
  const std::optional<std::int32_t> count = rows.Integer();
  if (!first || !count || *first < 1 || *count < 1) return std::nullopt;
  return UsedRows{*first - 1, *first - 1 + *count - 1};
}

}  // namespace quillmere
