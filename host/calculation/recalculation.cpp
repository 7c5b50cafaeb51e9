#include "host/calculation/recalculation.h"

#include <algorithm>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "host/calculation/dependencies.h"
#include "host/calculation/evaluator.h"

namespace qcalc {

namespace {

// A further pass follows a spill that changed its size; formulas that chase each other's size never settle.
constexpr int kMostPasses = 100;

constexpr const char* kUnsettled = "formulas do not settle: the size of a spilled array depends on itself";

// The cells that cannot be calculated this time, those that depend on others of them too, and why.
struct Failures {
  std::set<std::pair<IDSHEET, CellPosition>> cells;
  std::vector<std::string> reasons;
};

// How far a recalculation has come with one formula.
struct Progress {
  bool isInProgress = false;
  bool hasNewSpill = false;  // its readers are not among the dependents yet
  int timesCalculated = 0;
};

// One pass: calculates what is dirty, given what spilled in earlier passes.
class Pass {
 public:
  Pass(Workbooks& workbooks, const EvaluationContext& context, UnknownNames* unknown, Failures& failures)
      : workbooks_(workbooks),
        context_(context),
        unknown_(unknown),
        failures_(failures),
        formulas_(workbooks, context),
        progress_(formulas_.Size()) {}

  // False when nothing was left to do.
  bool Run(bool withVolatile) {
    formulas_.SpreadDirt(withVolatile);
    bool any = false;
    for (std::size_t i = 0; i < formulas_.Size(); ++i)
      if (formulas_.At(i).cell->isDirty && !HasFailed(i)) {
        Calculate(i);
        any = true;
      }
    return any;
  }

 private:
  std::string NameOf(std::size_t number) const {
    const FormulaPlace& place = formulas_.At(number);
    return ReferenceToText({place.sheet->Id(), {place.OwnCell()}}, workbooks_);
  }

  std::string DescribeCircle(const std::vector<std::size_t>& path, std::size_t again) const {
    std::string cells;
    for (auto i = std::find(path.begin(), path.end(), again); i != path.end(); ++i) cells += NameOf(*i) + " -> ";
    return "circular reference: " + cells + NameOf(again);
  }

  bool HasFailed(std::size_t number) const {
    const FormulaPlace& place = formulas_.At(number);
    return failures_.cells.contains({place.sheet->Id(), place.position});
  }

  // Each formula of the path waits for the next, so none of them can be calculated.
  void GiveUp(const std::vector<std::size_t>& path) {
    for (const std::size_t number : path) {
      failures_.cells.insert({formulas_.At(number).sheet->Id(), formulas_.At(number).position});
      progress_[number].isInProgress = false;
    }
  }

  void GiveUp(const std::vector<std::size_t>& path, const std::string& reason) {
    failures_.reasons.push_back(reason);
    GiveUp(path);
  }

  // Calculates a formula and before it, without recursion, all dirty ones that it reads.
  void Calculate(std::size_t target) {
    std::vector<std::size_t> path;
    std::optional<std::size_t> next = target;
    while (next || !path.empty()) {
      if (next) {
        if (HasFailed(*next)) return GiveUp(path);
        Progress& progress = progress_[*next];
        if (progress.isInProgress) return GiveUp(path, DescribeCircle(path, *next));
        path.push_back(*next);
        if (++progress.timesCalculated > kMostPasses) return GiveUp(path, kUnsettled);
        progress.isInProgress = true;
      }
      const std::size_t number = path.back();
      const std::vector<std::size_t>& precedents = formulas_.At(number).precedents;
      const auto waiting = std::find_if(precedents.begin(), precedents.end(),
                                        [&](std::size_t precedent) { return formulas_.At(precedent).cell->isDirty; });
      try {
        next = waiting != precedents.end() ? *waiting : Evaluate(number);
      } catch (const FormulaError& error) {
        return GiveUp(path, error.what());
      }
      if (next) continue;
      progress_[number].isInProgress = false;
      path.pop_back();
    }
  }

  // The formula cell that must be calculated first, if one was met that the formula does not name.
  std::optional<std::size_t> Evaluate(std::size_t number) {
    const FormulaPlace& place = formulas_.At(number);
    EvaluationContext context = context_;
    context.workbooks = &workbooks_;
    context.sheet = place.sheet;
    context.caller = {place.sheet->Id(), {place.OwnCell()}};
    context.askedVolatile = &place.cell->askedVolatile;
    try {
      Store(number, Dereference(qcalc::Evaluate(place.cell->formula, context, unknown_), workbooks_));
    } catch (const UncalculatedCell& met) {
      std::optional<std::size_t> first;
      formulas_.VisitFormulasIn({met.sheet, Area::OfCell(met.position.row, met.position.column)}, [&](std::size_t i) {
        if (formulas_.At(i).cell->isDirty) first = i;
      });
      if (!first) throw FormulaError(NameOf(number) + " read a cell that is not calculated and holds no formula");
      return first;
    } catch (const FormulaError& error) {
      throw FormulaError(NameOf(number) + ": " + error.what());
    } catch (const std::length_error& error) {
      throw FormulaError(NameOf(number) + ": " + error.what());
    }
    return std::nullopt;
  }

  void Store(std::size_t number, const Value& value) {
    Sheet& sheet = *formulas_.At(number).sheet;
    FormulaCell& cell = *formulas_.At(number).cell;
    const CellPosition anchor = formulas_.At(number).position;
    sheet.MarkDirty(anchor, false);
    cell.blocked.reset();
    if (!value.IsArray()) {
      TakeBackSpill(number);
      return sheet.Cells().Set(anchor.row, anchor.column, EmptyAsZero(value.AsCell()));
    }
    const Array& array = *value.AsArray();
    const Area wanted = Area::OfSize(anchor.row, anchor.column, array.Rows(), array.Columns());
    if (cell.spill != wanted) TakeBackSpill(number);
    if (!IsFree(sheet, wanted, anchor, cell)) {
      if (wanted.IsOnSheet()) cell.blocked = wanted;
      return sheet.Cells().Set(anchor.row, anchor.column, CellView::Error(kErrorSpill));
    }
    for (std::int32_t row = 0; row < array.Rows(); ++row)
      for (std::int32_t column = 0; column < array.Columns(); ++column)
        sheet.Cells().Set(anchor.row + row, anchor.column + column, EmptyAsZero(array.At(row, column)));
    if (wanted.IsOneCell()) return;
    bool& hasNewSpill = progress_[number].hasNewSpill;
    hasNewSpill = hasNewSpill || cell.spill != wanted;
    sheet.SetSpill(anchor, wanted);
    if (hasNewSpill) formulas_.SoilReaders({sheet.Id(), wanted}, number);
  }

  void TakeBackSpill(std::size_t number) {
    const FormulaPlace& place = formulas_.At(number);
    const std::optional<Area> spill = place.cell->spill;
    place.sheet->TakeBackSpill(place.position);
    if (spill) formulas_.SoilReaders({place.sheet->Id(), *spill}, number);
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
  UnknownNames* unknown_;
  Failures& failures_;
  Dependencies formulas_;
  std::vector<Progress> progress_;
};

}  // namespace

std::vector<std::string> Recalculate(Workbooks& workbooks, const EvaluationContext& context, UnknownNames* unknown) {
  Failures failures;
  for (int pass = 0; pass < kMostPasses; ++pass)
    if (!Pass(workbooks, context, unknown, failures).Run(pass == 0)) return failures.reasons;
  throw FormulaError(kUnsettled);
}

}  // namespace qcalc
