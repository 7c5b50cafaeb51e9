#include "samples/writer/formulas.h"

namespace samples {
namespace {

bool IsOfName(char character) {
  return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z') ||
         (character >= '0' && character <= '9') || character == '.' || character == '_';
}

}  // namespace

StoredFormula StoreFormula(std::string_view formula, const std::set<std::string>& functions) {
  StoredFormula stored;
  for (std::size_t at = 0; at < formula.size();) {
    std::size_t end = at + 1;
    if (formula[at] == '"' || formula[at] == '\'') {
      end = formula.find(formula[at], end);
      end = end == formula.npos ? formula.size() : end + 1;
    } else if (IsOfName(formula[at])) {
      while (end < formula.size() && IsOfName(formula[end])) ++end;
      const bool isCall = end < formula.size() && formula[end] == '(';
      if (isCall && functions.count(std::string(formula.substr(at, end - at)))) {
        stored.text += "_xll.";
        stored.callsAddin = true;
      }
    }
    stored.text += formula.substr(at, end - at);
    at = end;
  }
  return stored;
}

}  // namespace samples
