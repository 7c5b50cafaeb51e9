#include "host/calculation/dependencies.h"

#include <algorithm>

#include "host/calculation/addin_functions.h"
#include "host/calculation/builtins/builtin.h"
#include "host/formulas/formula_node.h"
#include "host/text/letter_case.h"

namespace qcalc {

Dependencies::Dependencies(const Workbooks& workbooks, const EvaluationContext& context)
    : workbooks_(workbooks), context_(context), places_(workbooks) {
  for (std::size_t i = 0; i < places_.Size(); ++i)
    if (places_.At(i).cell->blocked) blocked_.insert(i);
}

const AreaReaders& Dependencies::Readers() {
  if (readers_) return *readers_;
  std::vector<AreaReaders::Reading> readings;
  for (std::size_t i = 0; i < places_.Size(); ++i)
    VisitReadsOf(i, [&](const SheetArea& read) { readings.emplace_back(read, i); });
  readers_ = std::make_unique<AreaReaders>(readings);
  return *readers_;
}

void Dependencies::FindReaders(const SheetArea& where, std::vector<std::size_t>& readers) {
  Readers().Find(where, readers);
  for (const std::size_t i : blocked_)
    if (places_.At(i).sheet->Id() == where.sheet && places_.At(i).cell->blocked->Intersects(where.area))
      readers.push_back(i);
}

const Dependencies::Traits& Dependencies::TraitsOf(std::size_t number) {
  const FormulaTree& tree = places_.At(number).cell->formula.Tree();
  const auto [found, isNew] = traits_.try_emplace(&tree);
  Traits& traits = found->second;
  if (!isNew) return traits;
  for (const FormulaNode* call : tree.calls) {
    const Builtin* builtin = FindBuiltin(call->name);
    const AddinFunction* function = builtin || !context_.addin ? nullptr : context_.addin->Find(call->name);
    traits.isVolatile = traits.isVolatile || (builtin && builtin->isVolatile) || (function && function->isVolatile);
    traits.isThreadSafe = traits.isThreadSafe && (!function || function->isThreadSafe);
  }
  return traits;
}

bool Dependencies::IsVolatile(std::size_t number) {
  return places_.At(number).cell->askedVolatile.value_or(TraitsOf(number).isVolatile);
}

std::vector<std::size_t> Dependencies::SpreadDirt() {
  std::vector<SheetArea> changes;
  for (const auto& book : workbooks_.Books())
    for (const auto& sheet : book->Sheets())
      for (const Area& area : sheet->TakeChanges()) changes.push_back({sheet->Id(), area});
  std::vector<std::size_t> dirty, clean;
  for (std::size_t i = 0; i < places_.Size(); ++i) (places_.At(i).IsDirty() ? dirty : clean).push_back(i);
  if (clean.empty()) return dirty;
  std::vector<std::size_t> soiled;
  for (const SheetArea& change : changes) FindReaders(change, soiled);
  for (const std::size_t i : dirty) FindReaders(places_.At(i).Filled(), soiled);
  for (const std::size_t i : clean)
    if (IsVolatile(i)) soiled.push_back(i);
  for (const std::size_t i : Soil(std::move(soiled))) dirty.push_back(i);
  std::sort(dirty.begin(), dirty.end());
  dirty.erase(std::unique(dirty.begin(), dirty.end()), dirty.end());
  return dirty;
}

std::vector<std::size_t> Dependencies::Soil(std::vector<std::size_t> numbers) {
  for (std::size_t next = 0; next < numbers.size(); ++next) {
    const FormulaPlace& place = places_.At(numbers[next]);
    if (place.IsDirty()) continue;
    place.sheet->MarkDirty(place.position, true);
    FindReaders(place.Filled(), numbers);
  }
  return numbers;
}

std::vector<std::size_t> Dependencies::SoilReaders(const SheetArea& where) {
  std::vector<std::size_t> readers;
  FindReaders(where, readers);
  return Soil(std::move(readers));
}

void Dependencies::NoteBlocked(std::size_t number, bool isBlocked) {
  if (isBlocked)
    blocked_.insert(number);
  else
    blocked_.erase(number);
}

std::optional<std::size_t> Dependencies::FindDirtyPrecedent(std::size_t number, bool last) const {
  std::optional<std::size_t> precedent;
  VisitReadsOf(number, [&](const SheetArea& read) {
    if (precedent) return;
    const Sheet* sheet = workbooks_.FindSheet(read.sheet);
    const auto cell = last ? sheet->LastUncalculated(read.area) : sheet->FirstUncalculated(read.area);
    if (cell) precedent = places_.WriterOf(read.sheet, *cell);
  });
  return precedent;
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
