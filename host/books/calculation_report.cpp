#include "host/books/calculation_report.h"

#include <algorithm>
#include <map>
#include <tuple>

#include "host/formulas/reference_text.h"
#include "host/text/counted.h"

namespace qcalc {

namespace {

constexpr std::size_t kMostAreas = 10;

struct NamedArea {
  IDSHEET sheet;
  Area area;

  std::int64_t Cells() const { return std::int64_t{area.Rows()} * area.Columns(); }
};

std::string NameOf(const NamedArea& named, const Workbooks& workbooks) {
  const Sheet* sheet = workbooks.FindSheet(named.sheet);
  return QualifiedSheetName(sheet->Name()) + "!" + AreaToText(named.area);
}

// Runs down columns, and those beside each other that are of the same rows, as one area each.
std::vector<NamedArea> AreasOf(std::vector<SheetCell> cells) {
  std::sort(cells.begin(), cells.end(), [](const SheetCell& a, const SheetCell& b) {
    return std::tuple(a.sheet, a.position.column, a.position.row) <
           std::tuple(b.sheet, b.position.column, b.position.row);
  });
  std::vector<NamedArea> areas;
  const auto joinColumns = [&] {
    if (areas.size() < 2) return;
    NamedArea& left = areas[areas.size() - 2];
    const NamedArea& right = areas.back();
    if (left.sheet != right.sheet || left.area.firstRow != right.area.firstRow ||
        left.area.lastRow != right.area.lastRow || left.area.lastColumn + 1 != right.area.firstColumn)
      return;
    left.area.lastColumn = right.area.lastColumn;
    areas.pop_back();
  };
  for (const SheetCell& cell : cells) {
    const auto [row, column] = cell.position;
    if (!areas.empty() && areas.back().sheet == cell.sheet && areas.back().area.firstColumn == column &&
        areas.back().area.lastColumn == column && row <= areas.back().area.lastRow + 1) {
      areas.back().area.lastRow = row;
      continue;
    }
    joinColumns();
    areas.push_back({cell.sheet, Area::OfCell(row, column)});
  }
  joinColumns();
  return areas;
}

std::string FormulaIn(const SheetCell& cell, const Workbooks& workbooks) {
  const std::string text = workbooks.FindSheet(cell.sheet)->FindFormula(cell.position)->formula.Text();
  return text.starts_with('=') ? text : "=" + text;
}

}  // namespace

std::string CellName(const SheetCell& cell, const Workbooks& workbooks) {
  return NameOf({cell.sheet, Area::OfCell(cell.position.row, cell.position.column)}, workbooks);
}

std::string CellNames(std::vector<SheetCell> cells, const Workbooks& workbooks) {
  std::string names;
  std::int64_t more = 0;
  const std::vector<NamedArea> areas = AreasOf(std::move(cells));
  for (std::size_t i = 0; i < areas.size(); ++i)
    if (i < kMostAreas)
      names += (i > 0 ? ", " : "") + NameOf(areas[i], workbooks);
    else
      more += areas[i].Cells();
  return more == 0 ? names : names + " and " + Grouped(more) + " more";
}

std::vector<std::string> ReportFailures(const CalculationOutcome& outcome, const Workbooks& workbooks) {
  std::vector<std::string> sentences;
  std::vector<const std::string*> reasons;  // in the order they came
  std::map<std::string, std::vector<SheetCell>> cellsByReason;
  for (const CalculationFailure& failure : outcome.failures) {
    if (failure.reason.empty()) continue;
    const auto [entry, isNew] = cellsByReason.try_emplace(failure.reason);
    if (isNew) reasons.push_back(&entry->first);
    entry->second.push_back(failure.cells[0]);
  }
  for (const std::string* reason : reasons) {
    std::vector<SheetCell>& cells = cellsByReason[*reason];
    const SheetCell first = cells[0];
    std::string sentence =
        CellName(first, workbooks) + " is not calculated: " + *reason + ": " + FormulaIn(first, workbooks);
    cells.erase(cells.begin());
    if (!cells.empty()) sentence += "; nor is " + CellNames(cells, workbooks);
    sentences.push_back(std::move(sentence));
  }
  for (const CalculationFailure& failure : outcome.failures) {
    if (!failure.reason.empty()) continue;
    std::string circle = "circular reference: ";
    for (std::size_t i = 0; i < std::min(failure.cells.size(), kMostAreas); ++i)
      circle += CellName(failure.cells[i], workbooks) + " -> ";
    if (failure.cells.size() > kMostAreas)
      circle += "... (" + Grouped(static_cast<std::int64_t>(failure.cells.size())) + " cells) -> ";
    sentences.push_back(circle + CellName(failure.cells[0], workbooks));
  }
  if (!outcome.dependents.empty())
    sentences.push_back("not calculated either, since they read those: " + CellNames(outcome.dependents, workbooks));
  return sentences;
}

}  // namespace qcalc
