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

/// Every reference that stands in the formula.
std::vector<ReferenceText> ReferencesIn(const Formula& formula);
/// Every name that stands in the formula and is no function, without case.
std::vector<XString> NamesIn(const Formula& formula);

}  // namespace qcalc
