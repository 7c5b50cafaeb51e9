// Formulas as files store them.
#pragma once

#include <set>
#include <string>
#include <string_view>

namespace samples {

/// What a file holds for a formula.
struct StoredFormula {
  std::string text;
  bool callsAddin = false;
};

/// Puts "_xll." before each call of `functions`, whose names are written as they are registered: so Excel stores the
/// functions of an add-in. Quoted texts and sheet names stay as they are.
StoredFormula StoreFormula(std::string_view formula, const std::set<std::string>& functions);

}  // namespace samples
