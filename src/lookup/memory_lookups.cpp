// One value looked for in a list, first where the calling cell found it the last time.
//
// Serves MEMMATCH, MEMLOOKUP.
#include <cstdint>
#include <optional>
#include <utility>

#include "frame/callbacks/callbacks.h"
#include "frame/convert/argument.h"
#include "frame/convert/single_value.h"
#include "implementations/lookup.h"
#include "lookup/lookup_memory.h"
#include "table/column_selector.h"
#include "table/compare.h"
#include "table/table_view.h"

namespace quillmere::lookup {
namespace {

/// The list in the first column of a table, or in its first row when it runs across.
struct MemoryList {
  TableView table;
  ListDirection direction;
  std::int32_t headers = 0;  ///< 1: the table's first row (column) holds labels, and entries begin behind it

  bool IsAcross() const noexcept { return direction == ListDirection::kAcross; }
  std::int32_t Length() const noexcept { return (IsAcross() ? table.Columns() : table.Rows()) - headers; }
  bool HasPosition(std::int32_t position) const noexcept { return position >= 1 && position <= Length(); }

  /// The cell beside the entry at a position (from 1) in the given column (row; from 1): the entry itself in the first.
  CXlOper Read(std::int32_t position, std::int32_t line) const {
    const std::int32_t along = headers + position - 1;
    return IsAcross() ? table.ReadCell(line - 1, along) : table.ReadCell(along, line - 1);
  }
};

struct MemoryLookup {
  CXlOper value;  ///< a view of the argument
  bool isSorted;
  MemoryList list;
  LookupMemory memory;

  /// Excel compares by its own rules; here type and letter case count.
  bool HoldsValue(std::int32_t position) const {
    return list.HasPosition(position) && CompareOpers(&list.Read(position, 1).Raw(), &value.Raw()) == 0;
  }
  /// Excel's MATCH of the value in `array`, approximate in a sorted list. It is asked for ascending order even where
  /// the list is said to descend.
  template <class Array>
  CXlOper Match(const Array& array) const {
    return CallExcelOrValueError(xlfMatch, value, array, BooleanCell(isSorted));
  }
};

/// A view of the value of an argument that stands for one; #VALUE! for several.
CXlOper SingleValue(const CXlArgument& argument) {
  const XLOPER12* const cell = OnlyCell(argument.Value());
  if (!cell) throw CXlErrorException(xlerrValue);
  return CXlOper::BorrowCell(*cell);
}

/// The arguments that both functions have.
struct MemoryLookupArguments {
  const CXlArgument& lookupValue;
  const CXlArgument& lookupArray;
  const CXlScalarArgument<ElementKind::kShortInteger>& sortType;
  const CXlArgument& memType;
  const CXlScalarArgument<ElementKind::kInteger>& verticalHorizontal;
};

/// What Vertical_Horizontal asks for; every other number asks for a list that runs down.
enum : std::int32_t { kGuessDirection = 0, kHorizontal = 2 };

ListDirection DirectionOf(std::int32_t verticalHorizontal, const TableView& table) {
  const bool isAcross =
      verticalHorizontal == kHorizontal || (verticalHorizontal == kGuessDirection && table.Columns() > table.Rows());
  return isAcross ? ListDirection::kAcross : ListDirection::kDown;
}

MemoryLookup ReadArguments(const MemoryLookupArguments& arguments) {
  CXlOper value = SingleValue(arguments.lookupValue);
  const TableView table(arguments.lookupArray.Value());
  const bool isSorted = arguments.sortType.Read() != 0;
  const ListDirection direction = DirectionOf(arguments.verticalHorizontal.Read(), table);
  std::optional<MemoryChoice> choice = ReadMemoryChoice(arguments.memType.Value());
  if (!choice) throw CXlErrorException(xlerrValue);
  MemoryLookup lookup{std::move(value), isSorted, {table, direction}, LookupMemory(*std::move(choice), direction)};
  lookup.memory.RequireCallingCells();
  return lookup;
}

/// The position of the value: the remembered one where the value still stands there, else the one that `search` gives
/// as Excel's answer, which is then remembered. In a list not said to be sorted that may lie outside the list: Excel
/// searches a row all the same where a column was to be.
template <class Search>
std::optional<std::int32_t> FindPosition(MemoryLookup& lookup, const Search& search) {
  if (lookup.list.Length() == 0) return std::nullopt;
  const std::optional<std::int32_t> remembered = lookup.memory.Recall(0);
  if (remembered && lookup.HoldsValue(*remembered)) return remembered;

  const CXlOper answer = search();
  if (!answer.IsNumber() || !(answer.AsNumber() >= 1 && answer.AsNumber() <= kXlMaxRows)) return std::nullopt;
  const auto position = static_cast<std::int32_t>(answer.AsNumber());
  if (lookup.isSorted && !lookup.HoldsValue(position)) return std::nullopt;
  lookup.memory.Remember(0, position);
  return position;
}

/// Excel's MATCH in the list alone.
CXlOper MatchInList(const MemoryLookup& lookup) {
  const MemoryList& list = lookup.list;
  const std::int32_t row = list.IsAcross() ? 0 : list.headers;
  const std::int32_t column = list.IsAcross() ? list.headers : 0;
  const std::int32_t rows = list.IsAcross() ? 1 : list.Length();
  const std::int32_t columns = list.IsAcross() ? list.Length() : 1;
  if (list.table.IsReference()) return lookup.Match(list.table.Part(row, column, rows, columns));
  return lookup.Match(CXlLentCells(list.table.Cells(), row, column, rows, columns));
}

}  // namespace

void Functions::MemMatch(CXlOper& result, const CXlArgument& lookupValue, const CXlArgument& lookupArray,
                         const CXlScalarArgument<ElementKind::kShortInteger>& sortType, const CXlArgument& memType,
                         const CXlScalarArgument<ElementKind::kInteger>& verticalHorizontal) {
  MemoryLookup lookup = ReadArguments({lookupValue, lookupArray, sortType, memType, verticalHorizontal});
  const std::optional<std::int32_t> position = FindPosition(lookup, [&] { return lookup.Match(lookupArray.Value()); });
  if (position)
    result.SetNumber(*position);
  else
    result.SetError(xlerrNA);
}

void Functions::MemLookup(CXlOper& result, const CXlArgument& lookupValue, const CXlArgument& lookupArray,
                          const CXlArgument& resultColumn,
                          const CXlScalarArgument<ElementKind::kShortInteger>& sortType, const CXlArgument& memType,
                          const CXlScalarArgument<ElementKind::kInteger>& verticalHorizontal) {
  result.SetError(xlerrValue);
  MemoryLookup lookup = ReadArguments({lookupValue, lookupArray, sortType, memType, verticalHorizontal});
  const CXlOper selector = SingleValue(resultColumn);
  MemoryList& list = lookup.list;
  const SelectedColumns selected =
      list.IsAcross() ? SelectRows(selector.Cells(), list.table) : SelectColumns(selector.Cells(), list.table);
  if (selected.failed) {
    if (selected.headerUsed) result.SetText(XTEXT("#Result_Column Label not found in Header"));
    return;
  }
  list.headers = selected.headerUsed ? 1 : 0;

  const std::optional<std::int32_t> position = FindPosition(lookup, [&] { return MatchInList(lookup); });
  if (position && list.HasPosition(*position))
    result = CXlOper::FromCell(list.Read(*position, selected.columns.front()).Raw());
  else
    result.SetError(xlerrNA);
}

}  // namespace quillmere::lookup
