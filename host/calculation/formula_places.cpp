#include "host/calculation/formula_places.h"

#include <algorithm>

namespace qcalc {

FormulaPlaces::FormulaPlaces(const Workbooks& workbooks) {
  for (const auto& book : workbooks.Books())
    for (const auto& sheet : book->Sheets()) {
      const std::size_t begin = places_.size();
      for (auto& [position, cell] : sheet->Formulas()) places_.push_back({sheet.get(), position, &cell});
      sheets_[sheet->Id()] = {sheet.get(), begin, places_.size()};
    }
}

std::optional<std::size_t> FormulaPlaces::WriterOf(IDSHEET sheet, CellPosition cell) const {
  const auto found = sheets_.find(sheet);
  if (found == sheets_.end()) return std::nullopt;
  const Stretch& stretch = found->second;
  const std::optional<CellPosition> writer = stretch.sheet->WriterOf(cell);
  if (!writer) return std::nullopt;
  const auto end = places_.begin() + static_cast<std::ptrdiff_t>(stretch.end);
  const auto place =
      std::lower_bound(places_.begin() + static_cast<std::ptrdiff_t>(stretch.begin), end, *writer,
                       [](const FormulaPlace& at, CellPosition position) { return at.position < position; });
  return static_cast<std::size_t>(place - places_.begin());
}

}  // namespace qcalc
