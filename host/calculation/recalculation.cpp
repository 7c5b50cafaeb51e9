#include "host/calculation/recalculation.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/calculation/addin_functions.h"
#include "host/calculation/evaluator.h"
#include "host/formulas/formula_node.h"
#include "host/text/letter_case.h"

namespace qcalc {

namespace {

// A further pass follows a spill that changed its size; formulas that chase each other's size never settle.
constexpr int kMostPasses = 100;

[[noreturn]] void FailUnsettled() {
  throw FormulaError("formulas do not settle: the size of a spilled array depends on itself");
}

struct SheetArea {
  IDSHEET sheet;
  Area area;
};

// One formula cell while a recalculation looks at it.
struct Item {
  Sheet* sheet;
  CellPosition position;
  FormulaCell* cell;
  std::vector<SheetArea> reads;         // what stands in the formula
  std::vector<std::size_t> dependents;  // formulas that read this one's cells
  std::vector<std::size_t> precedents;
  bool isInProgress = false;
  bool hasNewSpill = false;  // its readers are not among the dependents yet
  int timesCalculated = 0;

  Area OwnCell() const { return Area::OfCell(position.row, position.column); }
};

// The formula cells of one sheet, to be found by area.
struct SheetIndex {
  std::map<std::int32_t, std::vector<std::pair<std::int32_t, std::size_t>>> rowsByColumn;  // rows ascending
  std::vector<std::size_t> spilled;
};

// One pass: calculates what is dirty, given what spilled in earlier passes.
class Pass {
 public:
  Pass(Workbooks& workbooks, const EvaluationContext& context) : workbooks_(workbooks), context_(context) {
    Collect();
    Connect();
  }

  // False when nothing was left to do.
  bool Run(bool withVolatile) {
    SpreadDirt(withVolatile);
    bool any = false;
    for (std::size_t i = 0; i < items_.size(); ++i)
      if (items_[i].cell->isDirty) {
        Calculate(i);
        any = true;
      }
    return any;
  }

 private:
  void Collect() {
    for (const auto& book : workbooks_.Books())
      for (const auto& sheet : book->Sheets()) {
        SheetIndex& index = indexes_[sheet->Id()];
        for (auto& [position, cell] : sheet->Formulas()) {
          index.rowsByColumn[position.column].emplace_back(position.row, items_.size());
          if (cell.spill) index.spilled.push_back(items_.size());
          items_.push_back({sheet.get(), position, &cell, ReadsOf(cell.formula, *sheet), {}, {}});
        }
      }
  }

  std::vector<SheetArea> ReadsOf(const Formula& formula, const Sheet& sheet) const {
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

  // Calls visitor(index) for each formula cell whose own or spilled cells lie in the area.
  template <typename Visitor>
  void VisitFormulasIn(const SheetArea& where, Visitor&& visitor) const {
    const auto found = indexes_.find(where.sheet);
    if (found == indexes_.end()) return;
    const auto& columns = found->second.rowsByColumn;
    for (auto column = columns.lower_bound(where.area.firstColumn);
         column != columns.end() && column->first <= where.area.lastColumn; ++column) {
      const auto& rows = column->second;
      for (auto row = std::lower_bound(rows.begin(), rows.end(), std::pair(where.area.firstRow, std::size_t{0}));
           row != rows.end() && row->first <= where.area.lastRow; ++row)
        visitor(row->second);
    }
    for (const std::size_t i : found->second.spilled)
      if (items_[i].cell->spill->Intersects(where.area) &&
          !where.area.Contains(items_[i].position.row, items_[i].position.column))
        visitor(i);
  }

  void Connect() {
    for (std::size_t i = 0; i < items_.size(); ++i)
      for (const SheetArea& read : items_[i].reads)
        VisitFormulasIn(read, [&](std::size_t precedent) {
          items_[precedent].dependents.push_back(i);
          items_[i].precedents.push_back(precedent);
        });
  }

  bool IsVolatile(const Item& item) const {
    bool found = false;
    VisitNodes(item.cell->formula.Root(), [&](const FormulaNode& node) {
      if (found || node.kind != FormulaNode::Kind::kCall || !context_.addin) return;
      const AddinFunction* function = context_.addin->Find(node.name);
      found = function && function->isVolatile;
    });
    return found;
  }

  void SpreadDirt(bool withVolatile) {
    std::map<IDSHEET, std::vector<Area>> changes;
    for (auto& [id, index] : indexes_) changes[id] = workbooks_.FindSheet(id)->TakeChanges();
    for (std::size_t i = 0; i < items_.size(); ++i)
      if (items_[i].cell->isDirty || IsTouched(items_[i], changes) || (withVolatile && IsVolatile(items_[i]))) Soil(i);
  }

  // Makes a formula dirty and with it all clean ones that depend on it.
  void Soil(std::size_t first) {
    std::vector<std::size_t> open{first};
    while (!open.empty()) {
      const Item& item = items_[open.back()];
      open.pop_back();
      item.sheet->MarkDirty(item.position, true);
      for (const std::size_t dependent : item.dependents)
        if (!items_[dependent].cell->isDirty) open.push_back(dependent);
    }
  }

  static bool IsTouched(const Item& item, const std::map<IDSHEET, std::vector<Area>>& changes) {
    const auto touches = [&](IDSHEET sheet, const Area& area) {
      const auto found = changes.find(sheet);
      return found != changes.end() && std::any_of(found->second.begin(), found->second.end(),
                                                   [&](const Area& change) { return change.Intersects(area); });
    };
    if (item.cell->blocked && touches(item.sheet->Id(), *item.cell->blocked)) return true;
    return std::any_of(item.reads.begin(), item.reads.end(),
                       [&](const SheetArea& read) { return touches(read.sheet, read.area); });
  }

  std::string NameOf(const Item& item) const {
    return ReferenceToText({item.sheet->Id(), {item.OwnCell()}}, workbooks_);
  }

  [[noreturn]] void FailCircular(const std::vector<std::size_t>& path, std::size_t again) const {
    std::string cells;
    for (auto i = std::find(path.begin(), path.end(), again); i != path.end(); ++i)
      cells += NameOf(items_[*i]) + " -> ";
    throw FormulaError("circular reference: " + cells + NameOf(items_[again]));
  }

  // Calculates a formula and before it, without recursion, all dirty ones that it reads.
  void Calculate(std::size_t target) {
    std::vector<std::size_t> path;
    const auto enter = [&](std::size_t i) {
      if (items_[i].isInProgress) FailCircular(path, i);
      if (++items_[i].timesCalculated > kMostPasses) FailUnsettled();
      items_[i].isInProgress = true;
      path.push_back(i);
    };
    enter(target);
    while (!path.empty()) {
      Item& item = items_[path.back()];
      const auto waiting = std::find_if(item.precedents.begin(), item.precedents.end(),
                                        [&](std::size_t precedent) { return items_[precedent].cell->isDirty; });
      if (waiting != item.precedents.end()) {
        enter(*waiting);
        continue;
      }
      if (const auto met = Evaluate(item)) {
        enter(*met);
        continue;
      }
      item.isInProgress = false;
      path.pop_back();
    }
  }

  // The formula cell that must be calculated first, if one was met that the formula does not name.
  std::optional<std::size_t> Evaluate(Item& item) {
    EvaluationContext context = context_;
    context.workbooks = &workbooks_;
    context.sheet = item.sheet;
    context.caller = {item.sheet->Id(), {item.OwnCell()}};
    try {
      Value value = Dereference(qcalc::Evaluate(item.cell->formula, context), workbooks_);
      Store(item, value);
    } catch (const UncalculatedCell& met) {
      std::optional<std::size_t> first;
      VisitFormulasIn({met.sheet, Area::OfCell(met.position.row, met.position.column)}, [&](std::size_t i) {
        if (items_[i].cell->isDirty) first = i;
      });
      if (!first) throw FormulaError(NameOf(item) + " read a cell that is not calculated and holds no formula");
      return first;
    } catch (const FormulaError& error) {
      throw FormulaError(NameOf(item) + ": " + error.what());
    }
    return std::nullopt;
  }

  void Store(Item& item, const Value& value) {
    Sheet& sheet = *item.sheet;
    FormulaCell& cell = *item.cell;
    const CellPosition anchor = item.position;
    sheet.MarkDirty(anchor, false);
    cell.blocked.reset();
    if (!value.IsArray()) {
      TakeBackSpill(item);
      return sheet.Cells().Set(anchor.row, anchor.column, EmptyAsZero(value.AsCell()));
    }
    const Array& array = *value.AsArray();
    const Area wanted{anchor.row, anchor.row + array.Rows() - 1, anchor.column, anchor.column + array.Columns() - 1};
    if (cell.spill != wanted) TakeBackSpill(item);
    if (!IsFree(sheet, wanted, anchor, cell)) {
      if (wanted.IsOnSheet()) cell.blocked = wanted;
      return sheet.Cells().Set(anchor.row, anchor.column, CellView::Error(kErrorSpill));
    }
    for (std::int32_t row = 0; row < array.Rows(); ++row)
      for (std::int32_t column = 0; column < array.Columns(); ++column)
        sheet.Cells().Set(anchor.row + row, anchor.column + column, EmptyAsZero(array.At(row, column)));
    if (wanted.IsOneCell()) return;
    item.hasNewSpill = item.hasNewSpill || cell.spill != wanted;
    sheet.SetSpill(anchor, wanted);
    if (item.hasNewSpill) SoilReaders({sheet.Id(), wanted}, item);
  }

  void TakeBackSpill(Item& item) {
    const std::optional<Area> spill = item.cell->spill;
    item.sheet->TakeBackSpill(item.position);
    if (spill) SoilReaders({item.sheet->Id(), *spill}, item);
  }

  // Whoever read cells that a formula fills only now, or no longer, was calculated too early: the next pass does it
  // again.
  void SoilReaders(const SheetArea& where, const Item& writer) {
    for (std::size_t i = 0; i < items_.size(); ++i) {
      const Item& item = items_[i];
      const bool unblocked = &item != &writer && item.cell->blocked && item.sheet->Id() == where.sheet &&
                             item.cell->blocked->Intersects(where.area);
      const bool reads = std::any_of(item.reads.begin(), item.reads.end(), [&](const SheetArea& read) {
        return read.sheet == where.sheet && read.area.Intersects(where.area);
      });
      if (!item.cell->isDirty && (unblocked || reads)) Soil(i);
    }
  }

  static bool IsFree(const Sheet& sheet, const Area& wanted, CellPosition anchor, const FormulaCell& cell) {
    if (!wanted.IsOnSheet()) return false;
    if (cell.spill == wanted) return true;
    bool free = true;
    sheet.VisitUsed(wanted, [&](std::int32_t row, std::int32_t column, const CellView&) {
      free = free && CellPosition{row, column} == anchor;
    });
    return free;
  }

  Workbooks& workbooks_;
  const EvaluationContext& context_;
  std::vector<Item> items_;
  std::map<IDSHEET, SheetIndex> indexes_;
};

}  // namespace

void Recalculate(Workbooks& workbooks, const EvaluationContext& context) {
  for (int pass = 0; pass < kMostPasses; ++pass)
    if (!Pass(workbooks, context).Run(pass == 0)) return;
  FailUnsettled();
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
