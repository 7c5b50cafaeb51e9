// Which formula cells read which, and which are dirty: to be calculated before their value counts.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <set>
#include <unordered_map>
#include <vector>

#include "host/calculation/area_readers.h"
#include "host/calculation/evaluation_context.h"
#include "host/calculation/formula_places.h"
#include "host/calculation/formula_reads.h"

namespace qcalc {

/// Nothing is worked out before it is asked for: a book whose formulas are all dirty needs no list of who reads what.
class Dependencies {
 public:
  /// Both outlive this. Names and add-in are taken from `context`.
  Dependencies(const Workbooks& workbooks, const EvaluationContext& context);

  const FormulaPlaces& Places() const { return places_; }

  /// Makes dirty what reads cells that were changed, or is blocked by them, what calls a volatile function, and all
  /// that depends on it. The numbers of all that is dirty then.
  std::vector<std::size_t> SpreadDirt();

  /// A formula that fills a cell which that one reads, and that is dirty; nothing when all it reads is calculated. Of
  /// several the one of the first cell, or of the last.
  std::optional<std::size_t> FindDirtyPrecedent(std::size_t number, bool last) const;

  /// Makes dirty what reads, or is blocked by, cells that were filled only now or no longer, and all that depends on
  /// it: it was calculated too early. The numbers of all that read or were blocked, dirty before or not, and of all
  /// that depend on what was not.
  std::vector<std::size_t> SoilReaders(const SheetArea& where);

  /// Tells that the formula's result is blocked, or no longer.
  void NoteBlocked(std::size_t number, bool isBlocked);

  /// Whether the formula calls nothing that only the main thread may.
  bool IsThreadSafe(std::size_t number) { return TraitsOf(number).isThreadSafe; }

 private:
  struct Traits {
    bool isVolatile = false;
    bool isThreadSafe = true;
  };

  template <typename Visitor>
  void VisitReadsOf(std::size_t number, Visitor&& visitor) const {
    const FormulaPlace& place = places_.At(number);
    VisitReads(place.cell->formula, *place.sheet, place.position, context_.names, visitor);
  }
  const Traits& TraitsOf(std::size_t number);
  bool IsVolatile(std::size_t number);
  const AreaReaders& Readers();
  void FindReaders(const SheetArea& where, std::vector<std::size_t>& readers);
  // Makes clean ones of these dirty and with them all clean ones that depend on them; gives all.
  std::vector<std::size_t> Soil(std::vector<std::size_t> numbers);

  const Workbooks& workbooks_;
  const EvaluationContext& context_;
  FormulaPlaces places_;
  std::unique_ptr<AreaReaders> readers_;
  std::set<std::size_t> blocked_;
  std::unordered_map<const FormulaTree*, Traits> traits_;
};

/// Formulas that use this name (without case) are dirty: its value changed.
void NoteNameChange(Workbooks& workbooks, XStringView name);

}  // namespace qcalc
