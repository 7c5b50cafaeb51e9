#include "host/calculation/evaluation_context.h"

namespace qcalc {

Value CellsOfTable(const Table& table, const TableReference& reference, const EvaluationContext& context) {
  const auto cells = table.Resolve(reference, context.caller.areas.empty() ? -1 : context.caller.areas[0].firstRow);
  if (const auto* error = std::get_if<std::int32_t>(&cells)) return Value::Error(*error);
  const auto& where = std::get<SheetArea>(cells);
  return Value::OfReference({where.sheet, {where.area}});
}

void CheckCalculated(const Reference& reference, const Workbooks& workbooks) {
  const Sheet* sheet = workbooks.FindSheet(reference.sheet);
  if (!sheet) return;
  for (const Area& area : reference.areas)
    if (const auto cell = sheet->FirstUncalculated(area)) throw UncalculatedCell{reference.sheet, *cell};
}

}  // namespace qcalc
