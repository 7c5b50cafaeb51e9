#include "lookup/lookup_arguments.h"

#include <numeric>
#include <utility>

#include "frame/convert/single_value.h"
#include "table/column_selector.h"

namespace quillmere::lookup {
namespace {

[[noreturn]] void RefuseArgument() { throw CXlErrorException(xlerrValue); }

MemoryChoice ReadMemory(const CXlArgument* argument) {
  if (!argument) return {MemoryType::kNone, {}};
  std::optional<MemoryChoice> choice = ReadMemoryChoice(argument->Value());
  if (!choice) RefuseArgument();
  return *std::move(choice);
}

/// The cells of a selector that is one row; none for one left out.
CXlCells SelectorCells(const CXlArgument& selector) {
  if (!selector.IsGiven()) return {nullptr, 0, 0};
  const CXlCells cells = selector.Value().Cells();
  if (cells.rows != 1) RefuseArgument();
  return cells;
}

/// Resolves a selector to 0-based columns; `headerUsed` is set, and not cleared, by labels.
std::vector<std::int32_t> ResolveColumns(const CXlCells& selector, const TableView& table, bool& headerUsed) {
  SelectedColumns selected = SelectColumns(selector, table);
  if (selected.failed) RefuseArgument();
  headerUsed |= selected.headerUsed;
  for (std::int32_t& column : selected.columns) --column;
  return std::move(selected.columns);
}

std::vector<std::int32_t> LeadingColumns(std::int32_t count, const TableView& table) {
  if (count > table.Columns()) RefuseArgument();
  std::vector<std::int32_t> columns(static_cast<std::size_t>(count));
  std::iota(columns.begin(), columns.end(), 0);
  return columns;
}

}  // namespace

LookupPlan ReadLookup(const LookupArguments& arguments) {
  const bool wantsValues = arguments.answerColumns != nullptr;
  if (arguments.lookupValues.Value().IsEmpty() || arguments.lookupTable.Value().IsEmpty()) RefuseArgument();
  if (wantsValues) arguments.answerColumns->Value();  // a call without it is refused before the table is looked at

  const TableView table(arguments.lookupTable.Value());
  const CXlCells keys = arguments.lookupValues.Value().Cells();
  const CXlCells lookupSelector = SelectorCells(arguments.lookupColumns);
  if (lookupSelector.columns != 0 && lookupSelector.columns != keys.columns) RefuseArgument();
  const CXlCells answerSelector = wantsValues ? SelectorCells(*arguments.answerColumns) : CXlCells{};
  if (arguments.position < wanted_match::kAll) RefuseArgument();
  MemoryChoice memory = ReadMemory(arguments.memory);

  bool headerUsed = false;
  std::vector<std::int32_t> answerColumns;
  if (wantsValues) answerColumns = ResolveColumns(answerSelector, table, headerUsed);
  std::vector<std::int32_t> lookupColumns = lookupSelector.columns == 0
                                                ? LeadingColumns(keys.columns, table)
                                                : ResolveColumns(lookupSelector, table, headerUsed);
  return {headerUsed ? table.WithoutFirstRow() : table,
          keys,
          std::move(lookupColumns),
          std::move(answerColumns),
          std::move(memory),
          arguments.position};
}

MatchRules ReadMatchRules(const CXlOper& sorted, const CXlOper& exactMatch, bool caseSensitive) {
  MatchRules rules;
  rules.caseSensitive = caseSensitive;
  if (const XLOPER12* const only = OnlyCell(sorted); only && IsErrorCell(*only)) RefuseArgument();
  rules.order = ParseSortOrder(sorted);

  const XLOPER12* const exact = OnlyCell(exactMatch);
  if (!exact) return rules;
  switch (CellType(*exact)) {
    case xltypeErr:
      RefuseArgument();
    case xltypeBool:
      rules.exact = exact->val.xbool != 0 || rules.order == SortOrder::kUnsorted;
      break;
    case xltypeNum:
    case xltypeInt:
    case xltypeStr:
      rules.notFound = *exact;
      break;
    default:
      break;
  }
  return rules;
}

}  // namespace quillmere::lookup
