#include "host/formulas/formula_pool.h"

#include "host/formulas/area_scan.h"

namespace qcalc {

namespace {

// Before the numbers of an area in a key; no file has it in a formula.
constexpr char kAreaMark = '\x01';

void AppendNumber(std::string& key, std::int32_t number) {
  key.append(reinterpret_cast<const char*>(&number), sizeof number);
}

}  // namespace

// The text, and in place of each reference how far its ends are from the cell, or where they are if they do not move.
void FormulaPool::MakeKey(std::string_view text, std::int32_t row, std::int32_t column) {
  key_.clear();
  ScanAreas(
      text, [&](std::string_view between) { key_ += between; },
      [&](const AreaText& written) {
        const auto& [area, moving] = written;
        key_ += kAreaMark;
        key_ +=
            static_cast<char>(moving.firstRow | moving.lastRow << 1 | moving.firstColumn << 2 | moving.lastColumn << 3);
        AppendNumber(key_, area.firstRow - (moving.firstRow ? row : 0));
        AppendNumber(key_, area.lastRow - (moving.lastRow ? row : 0));
        AppendNumber(key_, area.firstColumn - (moving.firstColumn ? column : 0));
        AppendNumber(key_, area.lastColumn - (moving.lastColumn ? column : 0));
      });
}

Parsed<Formula> FormulaPool::Enter(std::string_view text, std::int32_t row, std::int32_t column) {
  if (text.find(kAreaMark) != std::string_view::npos) return ParseFormula(text, dialect_);
  MakeKey(text, row, column);
  if (const auto found = entries_.find(key_); found != entries_.end()) {
    const Entry& entry = found->second;
    return entry.formula.Moved(row - entry.row, column - entry.column);
  }
  Parsed<Formula> formula = ParseFormula(text, dialect_);
  if (formula) entries_.emplace(key_, Entry{*formula, row, column});
  return formula;
}

}  // namespace qcalc
