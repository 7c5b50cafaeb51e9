// A parsed formula and its parser. Parsing looks nothing up: names of sheets, functions and values are found when the
// formula is evaluated, so one formula may be evaluated any number of times, on several threads at once.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/formulas/reference_text.h"
#include "host/text/syntax_error.h"
#include "host/values/value.h"

namespace qcalc {

struct FormulaNode;  // formula_node.h
struct FormulaTree;

/// Copies and moved copies share all but where they stand.
class Formula {
 public:
  Formula() = default;
  explicit Formula(std::shared_ptr<const FormulaTree> tree, CellShift shift = {})
      : tree_(std::move(tree)), shift_(shift) {}

  const FormulaTree& Tree() const { return *tree_; }
  const FormulaNode& Root() const;
  /// How far its references are from those of the tree.
  CellShift Shift() const { return shift_; }
  /// As it was written, UTF-8, with its equals sign if it had one; of a moved one with the references that it has now.
  std::string Text() const;
  /// The formula as it is so many rows and columns further: references without `$` go along, round the sheet's edges.
  Formula Moved(std::int64_t rows, std::int64_t columns) const { return Formula(tree_, shift_.Plus(rows, columns)); }
  /// False for a default-constructed one, which must not be evaluated.
  explicit operator bool() const { return tree_ != nullptr; }

 private:
  std::shared_ptr<const FormulaTree> tree_;
  CellShift shift_;
};

/// Where a formula comes from, which decides what some words in it mean.
enum class FormulaDialect {
  kScript,  ///< `empty` is an empty cell, `[Book2]Data!A1` another open book
  kBook,    ///< a file: `empty` is a name, what other books hold cannot be read, nor can functions that bind names
};

/// Reads a whole formula, UTF-8, with or without its leading equals sign. Never fails but with an error: nesting deeper
/// than kMaxFormulaDepth is one, and so is what the host has no meaning for, such as a span of sheets.
Parsed<Formula> ParseFormula(std::string_view text, FormulaDialect dialect = FormulaDialect::kScript);
constexpr int kMaxFormulaDepth = 200;

/// A formula that cannot be evaluated for that reason, such as one that could not be read: it stands in its cell so
/// that what reads the cell is known.
Formula RefusedFormula(std::string_view text, std::string_view reason);

/// Every reference that stands in the formula, moved with it.
std::vector<ReferenceText> ReferencesIn(const Formula& formula);
/// Every name that stands in the formula and is no function, without case.
std::vector<XString> NamesIn(const Formula& formula);

}  // namespace qcalc
