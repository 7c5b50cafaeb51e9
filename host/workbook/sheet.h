// One worksheet: what stands in its cells, and what is to be calculated.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "host/formulas/formula.h"
#include "host/values/value.h"
#include "host/workbook/cell_marks.h"
#include "host/workbook/cell_store.h"
#include "host/workbook/column_index.h"

namespace qcalc {

class Book;

/// How a formula is calculated, and what becomes of a result of several cells.
enum class FormulaForm : std::uint8_t {
  kSpilling,  ///< element by element; the result fills the cells that it needs, from the formula's own on
  kSingle,    ///< as before there were spills: where one value is wanted, a range gives the cell in line with the
              ///< formula's, and the result is one value
  kArray,     ///< element by element; the result fills the cells that the formula was entered into, as many as they are
};

/// A formula in a cell. Its value stands in the sheet's cells, as any other.
struct FormulaCell {
  Formula formula;
  FormulaForm form = FormulaForm::kSpilling;
  std::optional<Area> spill;          ///< the cells that its array result fills, itself included; for kArray always
  std::optional<Area> blocked;        ///< the cells that its array result would fill, were they empty
  std::optional<bool> askedVolatile;  ///< what a function that it called asked for by xlfVolatile, last
};

/// One worksheet. Any number of threads may read while none writes. Positions are zero-based.
class Sheet {
 public:
  Sheet(Book& book, IDSHEET id, XString name) : book_(book), id_(id), name_(std::move(name)) {}

  IDSHEET Id() const { return id_; }
  const XString& Name() const { return name_; }
  Book& ItsBook() const { return book_; }
  /// `[Book1]Sheet1`.
  XString FullName() const;

  const CellView& Get(std::int32_t row, std::int32_t column) const { return cells_.Get(row, column); }
  /// All cells of the area, row by row: `visitor(const CellView&)`.
  template <typename Visitor>
  void VisitRowMajor(const Area& area, Visitor&& visitor) const {
    cells_.VisitRowMajor(area, visitor);
  }
  /// The non-empty cells of the area: `visitor(row, column, const CellView&)`.
  template <typename Visitor>
  void VisitUsed(const Area& area, Visitor&& visitor) const {
    cells_.VisitUsed(area, visitor);
  }
  /// The area as an array that shares the sheet's texts: nothing but the cells is copied.
  ArrayPtr ReadArray(const Area& area) const;
  /// One cell gives its value (empty stays empty), several an array.
  Value Read(const Area& area) const;

  /// Writes a value, as the script command `set` does: an array fills from the area's first cell on and must fit on the
  /// sheet (std::length_error otherwise); any other value fills the whole area, of kMaxArrayCells at most (likewise);
  /// empty clears. Formulas there are removed.
  void Set(const Area& area, const Value& value);
  /// Writes one result of a formula into the calling cells as Fill does, in place of what spilled there.
  /// std::length_error beyond kMaxArrayCells, before anything is written.
  void WriteResult(const Area& callingCells, const Value& value);
  /// Fills cells as an array formula does: an array element by element, a single row or column repeated, #N/A where it
  /// does not reach; empty cells become 0. Formulas there stay; whoever calls this reports it with NoteChange.
  void Fill(const Area& area, const Value& value);
  /// Puts a formula into every cell of the area, to be calculated by the next recalculation. References are not moved.
  /// std::length_error beyond 4,194,304 cells, before anything is written.
  void SetFormula(const Area& area, const Formula& formula);
  /// Puts in a formula as a file has it, to be calculated by the next recalculation: the cell keeps its value (0 where
  /// it has none). `fills` are the cells that its result fills now, its own first. No formula stood there.
  void PutFormula(CellPosition position, Formula formula, FormulaForm form, const Area& fills);
  /// Removes values and formulas.
  void Clear(const Area& area);

  void HideRows(std::int32_t first, std::int32_t last, bool hidden) { Hide(hiddenRows_, first, last, hidden); }
  bool IsRowHidden(std::int32_t row) const { return hiddenRows_.contains(row); }
  /// Hidden rows below the first row of the area are hidden by a filter.
  void AddFilter(const Area& area) { filters_.push_back(area); }
  bool IsRowFiltered(std::int32_t row) const;
  void HideColumns(std::int32_t first, std::int32_t last, bool hidden) { Hide(hiddenColumns_, first, last, hidden); }
  bool IsColumnHidden(std::int32_t column) const { return hiddenColumns_.contains(column); }

  /// First and last used row and column; cells with values or formulas count. Nothing for an empty sheet.
  std::optional<Area> UsedArea() const { return cells_.UsedArea(); }

  /// The formula in that cell, or null.
  const FormulaCell* FindFormula(CellPosition position) const;
  std::map<CellPosition, FormulaCell>& Formulas() { return formulas_; }
  const std::map<CellPosition, FormulaCell>& Formulas() const { return formulas_; }
  /// The first cell in the area whose value does not count yet, by rows: a formula's own, or one that it spilled into.
  /// Reading it is xlretUncalced.
  std::optional<CellPosition> FirstUncalculated(const Area& area) const { return dirty_.FindFirst(area); }
  std::optional<CellPosition> LastUncalculated(const Area& area) const { return dirty_.FindLast(area); }
  /// Whether any value of the sheet does not count yet.
  bool HasUncalculated() const { return !dirty_.IsEmpty(); }
  bool IsDirty(CellPosition position) const { return dirty_.Has(position); }
  /// The cell whose formula fills that one: itself if a formula stands there, else the one that spilled into it;
  /// nothing when no formula does.
  std::optional<CellPosition> WriterOf(CellPosition position) const;

  /// Cells for loaders and recalculation; whoever writes there reports it with NoteChange.
  CellStore& Cells() { return cells_; }
  const CellStore& Cells() const { return cells_; }
  /// For searches in whole columns; they grow with the searches.
  ColumnIndexes& Indexes() const { return indexes_; }
  /// Values in the area changed: formulas that read them are to be calculated anew.
  void NoteChange(const Area& area);
  /// The areas changed since the last call.
  std::vector<Area> TakeChanges() { return std::exchange(changes_, {}); }
  /// Whether the value of the formula in that cell, and what it spilled, is to be calculated before it counts.
  void MarkDirty(CellPosition position, bool dirty);
  /// Notes the cells that the result of the formula in that cell fills.
  void SetSpill(CellPosition anchor, const Area& spill);
  /// Empties the cells that the formula's result filled beyond its own; the caller sees to those who read them.
  void TakeBackSpill(CellPosition anchor);

 private:
  static void Hide(std::set<std::int32_t>& lines, std::int32_t first, std::int32_t last, bool hidden);
  void RemoveFormulas(const Area& area);
  void TakeBackSpills(const Area& area);
  // Forgets what the formula's result fills; the cells stay as they are.
  Area ForgetSpill(CellPosition anchor);
  // The anchors of the spills that fill cells of the area.
  std::set<CellPosition> SpillsIn(const Area& area) const;
  void Write(const Area& area, const Value& value);

  Book& book_;
  IDSHEET id_;
  XString name_;
  CellStore cells_;
  mutable ColumnIndexes indexes_;
  std::map<CellPosition, FormulaCell> formulas_;
  CellMarks dirty_;
  // The anchors of spills, by each column that they fill and their first row. No two share a cell.
  std::map<std::pair<std::int32_t, std::int32_t>, CellPosition> spilled_;
  std::set<std::int32_t> hiddenRows_;
  std::set<std::int32_t> hiddenColumns_;
  std::vector<Area> filters_;
  std::vector<Area> changes_;
};

}  // namespace qcalc
