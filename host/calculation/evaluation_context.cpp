#include "host/calculation/evaluation_context.h"

namespace qcalc {

void CheckCalculated(const Reference& reference, const Workbooks& workbooks) {
  const Sheet* sheet = workbooks.FindSheet(reference.sheet);
  if (!sheet) return;
  for (const Area& area : reference.areas)
    if (const auto cell = sheet->FirstUncalculated(area)) throw UncalculatedCell{reference.sheet, *cell};
}

}  // namespace qcalc
