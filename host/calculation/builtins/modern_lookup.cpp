// XLOOKUP, XMATCH.
#include "host/calculation/builtins/lookup_table.h"
#include "host/calculation/lookup_pattern.h"
#include "host/values/value_order.h"

namespace qcalc {

namespace {

using Place = std::optional<std::int32_t>;

// What the last two operands say. Searches by halves, 2 and -2, find on sorted cells what those from either end find.
struct SearchModes {
  bool hasWildcards = false;
  bool takesSmaller = false;  // where nothing is equal, the next smaller one
  bool takesLarger = false;
  bool isBackwards = false;
};

Value ReadModes(const BuiltinCall& call, std::size_t matchAt, SearchModes& modes) {
  std::int32_t match = 0, search = 1;
  for (const auto& [index, mode] : {std::pair{matchAt, &match}, {matchAt + 1, &search}}) {
    const Value operand = ScalarOperand(call, index);
    if (operand.IsMissing()) continue;
    if (operand.IsArray()) return Value::Error(xlerrValue);
    if (Value fault = ToWholeNumber(operand.AsCell(), call.context.marks, *mode); fault.IsError()) return fault;
  }
  if (match < -1 || match > 2 || search == 0 || search < -2 || search > 2) return Value::Error(xlerrValue);
  modes = {match == 2, match == -1, match == 1, search < 0};
  return {};
}

// A text in which wildcards stand for themselves.
XString Escaped(XStringView text) {
  XString escaped;
  for (const XCHAR unit : text) {
    if (unit == '*' || unit == '?' || unit == '~') escaped += XTEXT('~');
    escaped += unit;
  }
  return escaped;
}

template <typename Accept>
Place FindFromEnd(const CellLine& line, bool isBackwards, Accept&& accept) {
  const std::int32_t size = line.Size();
  for (std::int32_t i = 0; i < size; ++i)
    if (const std::int32_t place = isBackwards ? size - 1 - i : i; accept(line.At(place))) return place;
  return std::nullopt;
}

// An empty key finds an empty cell.
Place FindEqual(const CellView& key, const CellLine& line, const SearchModes& modes) {
  if (key.IsEmpty()) return FindFromEnd(line, modes.isBackwards, [](const CellView& cell) { return cell.IsEmpty(); });
  const bool isPattern = key.IsText() && modes.hasWildcards;
  if (!modes.isBackwards) {
    const XString text = key.IsText() && !isPattern ? Escaped(key.AsText()) : XString();
    return FindInLine(text.empty() ? key : CellView::Text(text), line, LookupOrder::kUnsorted);
  }
  if (!isPattern) return FindFromEnd(line, true, [&key](const CellView& cell) { return EqualsKey(key, cell); });
  const LookupPattern pattern(key.AsText());
  return FindFromEnd(line, true, [&](const CellView& cell) { return cell.IsText() && pattern.Matches(cell.AsText()); });
}

// The nearest one below the key, or above it; of equal ones that which the search meets first.
Place FindNearest(const CellView& key, const CellLine& line, const SearchModes& modes) {
  Place best;
  const auto isNearer = [&](const CellView& cell, const CellView& than) {
    return modes.takesSmaller ? CompareKey(cell, than) > 0 : CompareKey(cell, than) < 0;
  };
  for (std::int32_t from = 0;;) {
    const Place next = line.Find(from, line.Size() - 1, key.Kind(), [&](const CellView& cell) {
      return !isNearer(cell, key) &&
             (!best || isNearer(cell, line.At(*best)) || (modes.isBackwards && CompareKey(cell, line.At(*best)) == 0));
    });
    if (!next) return best;
    best = next;
    from = *next + 1;
  }
}

Place Find(const CellView& key, const CellLine& line, const SearchModes& modes) {
  const Place equal = FindEqual(key, line, modes);
  return equal || key.IsEmpty() || !(modes.takesSmaller || modes.takesLarger) ? equal : FindNearest(key, line, modes);
}

Value CallXmatch(const BuiltinCall& call) {
  const LookupTable table(call.operands[1], *call.context.workbooks);
  SearchModes modes;
  if (Value fault = ReadModes(call, 2, modes); fault.IsError()) return fault;
  const Value keys[] = {ScalarOperand(call, 0)};
  return Broadcast(keys, [&](std::span<const CellView> cells) {
    if (cells[0].IsError()) return Value::OfCell(cells[0]);
    if (table.Fault().IsError()) return table.Fault();
    if (!table.IsLine()) return Value::Error(xlerrValue);
    const Place place = Find(cells[0], table.OnlyLine(), modes);
    return place ? Value::Number(*place + 1) : Value::Error(xlerrNA);
  });
}

// The row of the answers beside the key that was found, or where keys stand in a row the column below it: a reference
// where the answers are one. Of several keys each has the first cell of its answer.
Value CallXlookup(const BuiltinCall& call) {
  const LookupTable table(call.operands[1], *call.context.workbooks),
      answers(call.operands[2], *call.context.workbooks);
  SearchModes modes;
  if (Value fault = ReadModes(call, 4, modes); fault.IsError()) return fault;
  const Value& source = call.operands[2];
  const bool isColumn = table.Columns() == 1;
  const auto answer = [&](const CellView& key) {
    if (key.IsError()) return Value::OfCell(key);
    if (table.Fault().IsError()) return table.Fault();
    if (answers.Fault().IsError()) return answers.Fault();
    const bool fits = isColumn ? table.Rows() == answers.Rows() : table.Columns() == answers.Columns();
    if (!table.IsLine() || !fits) return Value::Error(xlerrValue);
    const Place place = Find(key, table.OnlyLine(), modes);
    if (place)
      return TakePart(source, isColumn ? Area{*place, *place, 0, answers.Columns() - 1}
                                       : Area{0, answers.Rows() - 1, *place, *place});
    const bool hasInstead = call.operands.size() > 3 && !call.operands[3].IsMissing();
    return hasInstead ? call.operands[3] : Value::Error(xlerrNA);
  };
  const Value keys[] = {ScalarOperand(call, 0)};
  if (!keys[0].IsArray()) return answer(keys[0].AsCell());
  return Broadcast(keys, [&](std::span<const CellView> cells) {
    const Value part = Dereference(answer(cells[0]), *call.context.workbooks);
    return part.IsArray() ? Value::OfCell(part.AsArray()->At(0, 0)) : part;
  });
}

constexpr Builtin kSearchBuiltins[] = {{XTEXT("XLOOKUP"), 3, 6, CallXlookup, "vrrrv"},
                                       {XTEXT("XMATCH"), 2, 4, CallXmatch, "vrv"}};

}  // namespace

std::span<const Builtin> SearchBuiltins() { return kSearchBuiltins; }

}  // namespace qcalc
