#include "host/calculation/dependencies.h"

#include "host/calculation/addin_functions.h"
#include "host/formulas/formula_node.h"
#include "host/text/letter_case.h"

namespace qcalc {

namespace {

bool IsTouched(const FormulaPlace& place, const std::map<IDSHEET, std::vector<Area>>& changes) {
  const auto touches = [&](IDSHEET sheet, const Area& area) {
    const auto found = changes.find(sheet);
    return found != changes.end() && std::any_of(found->second.begin(), found->second.end(),
                                                 [&](const Area& change) { return change.Intersects(area); });
  };
  if (place.cell->blocked && touches(place.sheet->Id(), *place.cell->blocked)) return true;
  return std::any_of(place.reads.begin(), place.reads.end(),
                     [&](const SheetArea& read) { return touches(read.sheet, read.area); });
}

}  // namespace

Dependencies::Dependencies(Workbooks& workbooks, const EvaluationContext& context)
    : workbooks_(workbooks), context_(context) {
  Collect();
  Connect();
}

void Dependencies::Collect() {
  for (const auto& book : workbooks_.Books())
    for (const auto& sheet : book->Sheets()) {
      SheetIndex& index = sheets_[sheet->Id()];
      for (auto& [position, cell] : sheet->Formulas()) {
        index.rowsByColumn[position.column].emplace_back(position.row, formulas_.size());
        if (cell.spill) index.spilled.push_back(formulas_.size());
        formulas_.push_back({sheet.get(), position, &cell, ReadsOf(cell.formula, *sheet), {}, {}});
      }
    }
}

std::vector<SheetArea> Dependencies::ReadsOf(const Formula& formula, const Sheet& sheet) const {
  std::vector<SheetArea> reads;
  for (const ReferenceText& text : ReferencesIn(formula))
    if (const Sheet* target = workbooks_.FindSheet(text.book, text.sheet, &sheet))
      reads.push_back({target->Id(), text.area});
  if (!context_.names) return reads;
  for (const XString& name : NamesIn(formula))
    if (const auto bound = context_.names->find(name); bound != context_.names->end() && bound->second.IsReference())
      for (const Area& area : bound->second.AsReference().areas)
        reads.push_back({bound->second.AsReference().sheet, area});
  return reads;
}

void Dependencies::Connect() {
  for (std::size_t i = 0; i < formulas_.size(); ++i)
    for (const SheetArea& read : formulas_[i].reads)
      VisitFormulasIn(read, [&](std::size_t precedent) {
        formulas_[precedent].dependents.push_back(i);
        formulas_[i].precedents.push_back(precedent);
      });
}

bool Dependencies::IsVolatile(const FormulaPlace& place) const {
  if (place.cell->askedVolatile) return *place.cell->askedVolatile;
  bool found = false;
  VisitNodes(place.cell->formula.Root(), [&](const FormulaNode& node) {
    if (found || node.kind != FormulaNode::Kind::kCall || !context_.addin) return;
    const AddinFunction* function = context_.addin->Find(node.name);
    found = function && function->isVolatile;
  });
  return found;
}

void Dependencies::SpreadDirt(bool withVolatile) {
  std::map<IDSHEET, std::vector<Area>> changes;
  for (auto& [id, index] : sheets_) changes[id] = workbooks_.FindSheet(id)->TakeChanges();
  for (std::size_t i = 0; i < formulas_.size(); ++i)
    if (formulas_[i].cell->isDirty || IsTouched(formulas_[i], changes) || (withVolatile && IsVolatile(formulas_[i])))
      Soil(i);
}

// Makes a formula dirty and with it all clean ones that depend on it.
void Dependencies::Soil(std::size_t first) {
  std::vector<std::size_t> open{first};
  while (!open.empty()) {
    const FormulaPlace& place = formulas_[open.back()];
    open.pop_back();
    place.sheet->MarkDirty(place.position, true);
    for (const std::size_t dependent : place.dependents)
      if (!formulas_[dependent].cell->isDirty) open.push_back(dependent);
  }
}

void Dependencies::SoilReaders(const SheetArea& where, std::size_t writer) {
  for (std::size_t i = 0; i < formulas_.size(); ++i) {
    const FormulaPlace& place = formulas_[i];
    const bool unblocked = i != writer && place.cell->blocked && place.sheet->Id() == where.sheet &&
                           place.cell->blocked->Intersects(where.area);
    const bool reads = std::any_of(place.reads.begin(), place.reads.end(), [&](const SheetArea& read) {
      return read.sheet == where.sheet && read.area.Intersects(where.area);
    });
    if (!place.cell->isDirty && (unblocked || reads)) Soil(i);
  }
}

void NoteNameChange(Workbooks& workbooks, XStringView name) {
  const XString folded = FoldCase(name);
  for (const auto& book : workbooks.Books())
    for (const auto& sheet : book->Sheets())
      for (auto& [position, cell] : sheet->Formulas()) {
        const std::vector<XString> names = NamesIn(cell.formula);
        if (std::find(names.begin(), names.end(), folded) != names.end()) sheet->MarkDirty(position, true);
      }
}

}  // namespace qcalc
