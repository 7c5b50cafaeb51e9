// Formulas that differ only by their place, parsed once.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

#include "host/formulas/formula.h"

namespace qcalc {

/// Formulas as they come from the cells of a book: those that are equal but for how far they stand from what they refer
/// to share one tree. For one thread.
class FormulaPool {
 public:
  explicit FormulaPool(FormulaDialect dialect) : dialect_(dialect) {}

  /// The formula of that text in that cell, zero-based; errors as ParseFormula gives them.
  Parsed<Formula> Enter(std::string_view text, std::int32_t row, std::int32_t column);

 private:
  struct Entry {
    Formula formula;
    std::int32_t row;
    std::int32_t column;
  };

  void MakeKey(std::string_view text, std::int32_t row, std::int32_t column);

  FormulaDialect dialect_;
  std::unordered_map<std::string, Entry> entries_;
  std::string key_;
};

}  // namespace qcalc
