#include "host/formulas/formula.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "host/formulas/formula_node.h"
#include "host/formulas/formula_parser.h"
#include "host/formulas/formula_reference.h"
#include "host/text/letter_case.h"

namespace qcalc {

namespace {

// Runs a parser over the whole of the text and turns its throw into the error.
template <typename T, typename Parse>
Parsed<T> ParseWhole(std::string_view text, Parse parse) {
  try {
    TextCursor cursor(text);
    cursor.SkipBlanks();
    T result = parse(cursor);
    cursor.SkipBlanks();
    if (!cursor.AtEnd()) cursor.FailExpecting("the end of the reference");
    return result;
  } catch (SyntaxError& error) {
    return std::move(error);
  }
}

ReferenceText ReadReference(TextCursor& cursor) {
  ReferenceText reference;
  if (auto prefix = TakeSheetPrefix(cursor)) {
    reference.book = std::move(prefix->book);
    reference.sheet = std::move(prefix->sheet);
  }
  const auto area = TakeArea(cursor);
  if (!area) cursor.FailExpecting("a reference such as A1, B2:C9, A:A, 3:5 or Data!A1");
  reference.area = *area;
  return reference;
}

}  // namespace

Parsed<Formula> ParseFormula(std::string_view text) {
  try {
    return Formula(FormulaParser(text).ParseWhole(), std::string(text));
  } catch (SyntaxError& error) {
    return std::move(error);
  }
}

Parsed<ReferenceText> ParseReference(std::string_view text) { return ParseWhole<ReferenceText>(text, ReadReference); }

Parsed<std::vector<ReferenceText>> ParseReferences(std::string_view text) {
  return ParseWhole<std::vector<ReferenceText>>(text, [](TextCursor& cursor) {
    std::vector<ReferenceText> references;
    const bool several = cursor.Accept('(');
    do {
      cursor.SkipBlanks();
      references.push_back(ReadReference(cursor));
      cursor.SkipBlanks();
    } while (several && cursor.Accept(','));
    if (several && !cursor.Accept(')')) cursor.FailExpecting("',' or ')'");
    return references;
  });
}

Parsed<Area> ParseRows(std::string_view text) {
  return ParseWhole<Area>(text, [](TextCursor& cursor) {
    const std::size_t start = cursor.Position();
    int row = 0;
    const std::string_view rest = cursor.Rest();
    const auto [end, fault] = std::from_chars(rest.data(), rest.data() + rest.size(), row);
    const auto area = TakeArea(cursor);
    if (area && area->firstColumn == 0 && area->lastColumn == kXlMaxColumns - 1) return *area;
    cursor.MoveTo(start);
    if (area || fault != std::errc() || row < 1 || row > kXlMaxRows) cursor.FailExpecting("rows such as 3:5 or 3");
    cursor.Advance(static_cast<std::size_t>(end - rest.data()));
    return Area{row - 1, row - 1, 0, kXlMaxColumns - 1};
  });
}

std::vector<ReferenceText> ReferencesIn(const Formula& formula) {
  std::vector<ReferenceText> references;
  VisitNodes(formula.Root(), [&](const FormulaNode& node) {
    if (node.kind == FormulaNode::Kind::kReference) references.push_back(node.reference);
  });
  return references;
}

std::vector<XString> NamesIn(const Formula& formula) {
  std::vector<XString> names;
  VisitNodes(formula.Root(), [&](const FormulaNode& node) {
    if (node.kind == FormulaNode::Kind::kName) names.push_back(FoldCase(node.name));
  });
  return names;
}

std::string ColumnToText(std::int32_t column) {
  std::string letters;
  for (std::int32_t number = column + 1; number > 0; number = (number - 1) / 26)
    letters.insert(letters.begin(), static_cast<char>('A' + (number - 1) % 26));
  return letters;
}

std::string AreaToText(const Area& area, bool absolute) {
  const std::string mark = absolute ? "$" : "";
  const auto row = [&](std::int32_t number) { return mark + std::to_string(number + 1); };
  const auto column = [&](std::int32_t number) { return mark + ColumnToText(number); };
  if (area.firstRow == 0 && area.lastRow == kXlMaxRows - 1)
    return column(area.firstColumn) + ":" + column(area.lastColumn);
  if (area.firstColumn == 0 && area.lastColumn == kXlMaxColumns - 1)
    return row(area.firstRow) + ":" + row(area.lastRow);
  const std::string first = column(area.firstColumn) + row(area.firstRow);
  return area.IsOneCell() ? first : first + ":" + column(area.lastColumn) + row(area.lastRow);
}

}  // namespace qcalc
