// A parsed formula and its parser. Parsing looks nothing up: names of sheets, functions and values are found when the
// formula is evaluated, so one formula may be evaluated any number of times, on several threads at once.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/text/syntax_error.h"
#include "host/values/value.h"

namespace qcalc {

struct FormulaNode;  // formula_node.h

/// Where a written reference points to before its sheet is found. Empty names mean the current book and sheet.
struct ReferenceText {
  XString book;
  XString sheet;
  Area area;
};

class Formula {
 public:
  Formula() = default;
  Formula(std::shared_ptr<const FormulaNode> root, std::string text) : root_(std::move(root)), text_(std::move(text)) {}

  const FormulaNode& Root() const { return *root_; }
  /// As it was written, UTF-8, with its equals sign if it had one.
  const std::string& Text() const { return text_; }
  /// False for a default-constructed one, which must not be evaluated.
  explicit operator bool() const { return root_ != nullptr; }

 private:
  std::shared_ptr<const FormulaNode> root_;
  std::string text_;
};

/// Reads a whole formula, UTF-8, with or without its leading equals sign. Never fails but with an error: nesting deeper
/// than kMaxFormulaDepth is one.
Parsed<Formula> ParseFormula(std::string_view text);
constexpr int kMaxFormulaDepth = 200;

/// Reads one reference that takes up the whole of `text` but for blanks around it: `A1`, `$B$2:C9`, `A:A`, `3:5`,
/// `Data!A1`, `'My sheet'!A1`, `[Book]Sheet!A1`, a leading "!" alone for the current sheet.
Parsed<ReferenceText> ParseReference(std::string_view text);

/// As ParseReference, also for several areas in parentheses: `(A1:A3,C1)`.
Parsed<std::vector<ReferenceText>> ParseReferences(std::string_view text);

/// Reads a row range `3:5`, or one row `3`; zero-based rows in the area, over all columns.
Parsed<Area> ParseRows(std::string_view text);

/// Every reference that stands in the formula.
std::vector<ReferenceText> ReferencesIn(const Formula& formula);
/// Every name that stands in the formula and is no function, without case.
std::vector<XString> NamesIn(const Formula& formula);

/// `B3`, `B3:C9`, `A:A`, `3:5`; with `absolute` `$B$3`. No sheet.
std::string AreaToText(const Area& area, bool absolute = false);
/// `A`, `XFD` of a zero-based column.
std::string ColumnToText(std::int32_t column);

}  // namespace qcalc
