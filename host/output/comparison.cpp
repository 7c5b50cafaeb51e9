#include "host/output/comparison.h"

#include "host/formulas/reference_text.h"
#include "host/values/literal.h"
#include "host/values/value_order.h"

namespace qcalc {
namespace {

void Tell(const Sheet& sheet, CellPosition at, const CellView& stored, const CellView& value, Comparison& comparison) {
  ++comparison.compared;
  if (EqualsStored(stored, value)) return;
  if (++comparison.different > Comparison::kMostLines) return;
  comparison.lines.push_back(QualifiedSheetName(sheet.Name()) + "!" + AreaToText(Area::OfCell(at.row, at.column)) +
                             ": " + PrintLiteral(value) + ", the book has " + PrintLiteral(stored));
}

template <typename Visit>
void VisitPositions(const Area& area, Visit&& visit) {
  for (std::int32_t row = area.firstRow; row <= area.lastRow; ++row)
    for (std::int32_t column = area.firstColumn; column <= area.lastColumn; ++column) visit(CellPosition{row, column});
}

}  // namespace

void CachedValues::Note(const Area& filledBefore) {
  starts_.push_back(cells_.size());
  texts_ = sheet_.Cells().SharedPool();
  sheet_.VisitRowMajor(filledBefore, [this](const CellView& cell) { cells_.push_back(cell); });
}

CellView CachedValues::At(std::size_t formula, const Area& filledBefore, CellPosition position) const {
  if (!filledBefore.Contains(position.row, position.column)) return {};
  const auto row = static_cast<std::size_t>(position.row - filledBefore.firstRow);
  const auto column = static_cast<std::size_t>(position.column - filledBefore.firstColumn);
  return cells_[starts_[formula] + row * static_cast<std::size_t>(filledBefore.Columns()) + column];
}

bool EqualsStored(const CellView& stored, const CellView& value) {
  if (stored.Kind() != value.Kind()) return false;
  switch (value.Kind()) {
    case CellKind::kNumber:
      return CompareCells(stored, value) == 0;
    case CellKind::kText:
      return stored.AsText() == value.AsText();
    case CellKind::kBoolean:
      return stored.AsBoolean() == value.AsBoolean();
    case CellKind::kError:
      return stored.AsError() == value.AsError() || (stored.AsError() == xlerrValue && IsNewerError(value.AsError()));
    case CellKind::kEmpty:
      break;
  }
  return true;
}

void Compare(const SheetResults& results, const CachedValues& cached, Comparison& comparison) {
  const Sheet& sheet = *results.sheet;
  for (std::size_t i = 0; i < results.formulas.size(); ++i) {
    const FormulaResult& formula = results.formulas[i];
    if (!formula.isCalculated) continue;
    const Area& before = formula.filledBefore;
    if (cached.At(i, before, formula.position).IsEmpty()) {
      ++comparison.withoutValue;
      continue;
    }
    VisitPositions(formula.fillsNow, [&](CellPosition at) {
      Tell(sheet, at, cached.At(i, before, at), sheet.Get(at.row, at.column), comparison);
    });
    // What another formula fills now is compared there.
    VisitPositions(before, [&](CellPosition at) {
      if (!formula.fillsNow.Contains(at.row, at.column) && sheet.Get(at.row, at.column).IsEmpty())
        Tell(sheet, at, cached.At(i, before, at), {}, comparison);
    });
  }
}

}  // namespace qcalc
