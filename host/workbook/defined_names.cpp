#include "host/workbook/defined_names.h"

#include <utility>

namespace qcalc {

void DefinedNames::Define(XStringView name, IDSHEET sheet, Formula formula) {
  formulas_[XString(name)].insert_or_assign(sheet, std::move(formula));
}

const Formula* DefinedNames::Find(XStringView name, IDSHEET sheet) const {
  const auto found = formulas_.find(name);
  if (found == formulas_.end()) return nullptr;
  auto formula = found->second.find(sheet);
  if (formula == found->second.end()) formula = found->second.find(0);
  return formula == found->second.end() ? nullptr : &formula->second;
}

}  // namespace qcalc
