#include "host/calculation/result_writer.h"

namespace qcalc {

namespace {

// Whether nothing else stands where the array of that cell is to go.
bool IsFree(const Sheet& sheet, const Area& wanted, CellPosition anchor) {
  if (!wanted.IsOnSheet()) return false;
  bool free = true;
  sheet.VisitUsed(wanted, [&](std::int32_t row, std::int32_t column, const CellView&) {
    free = free && CellPosition{row, column} == anchor;
  });
  return free;
}

}  // namespace

std::vector<std::size_t> ResultWriter::Write(std::size_t number, const Value& value) {
  const FormulaPlace& place = dependencies_.Places().At(number);
  std::vector<std::size_t> readers;
  place.sheet->MarkDirty(place.position, false);
  if (place.cell->blocked) {
    place.cell->blocked.reset();
    dependencies_.NoteBlocked(number, false);
  }
  if (place.cell->form == FormulaForm::kArray) {
    place.sheet->Fill(place.Filled().area, value);
  } else if (value.IsArray() && place.cell->form == FormulaForm::kSpilling) {
    Spill(number, *value.AsArray(), readers);
  } else {
    TakeBack(number, readers);
    const CellView cell = value.IsArray() ? value.AsArray()->At(0, 0) : value.AsCell();
    place.sheet->Cells().Set(place.position.row, place.position.column, EmptyAsZero(cell));
  }
  return readers;
}

void ResultWriter::Spill(std::size_t number, const Array& array, std::vector<std::size_t>& readers) {
  const FormulaPlace& place = dependencies_.Places().At(number);
  const Area wanted = Area::OfSize(place.position.row, place.position.column, array.Rows(), array.Columns());
  const bool isNew = place.cell->spill != wanted;
  if (isNew) {
    TakeBack(number, readers);
    if (!IsFree(*place.sheet, wanted, place.position)) {
      if (wanted.IsOnSheet()) {
        place.cell->blocked = wanted;
        dependencies_.NoteBlocked(number, true);
      }
      return place.sheet->Cells().Set(place.position.row, place.position.column, CellView::Error(kErrorSpill));
    }
  }
  for (std::int32_t row = 0; row < array.Rows(); ++row)
    for (std::int32_t column = 0; column < array.Columns(); ++column)
      place.sheet->Cells().Set(wanted.firstRow + row, wanted.firstColumn + column, EmptyAsZero(array.At(row, column)));
  if (!isNew || wanted.IsOneCell()) return;
  place.sheet->SetSpill(place.position, wanted);
  SoilReaders({place.sheet->Id(), wanted}, readers);
}

void ResultWriter::TakeBack(std::size_t number, std::vector<std::size_t>& readers) {
  const FormulaPlace& place = dependencies_.Places().At(number);
  if (!place.cell->spill) return;
  const SheetArea filled = place.Filled();
  place.sheet->TakeBackSpill(place.position);
  SoilReaders(filled, readers);
}

void ResultWriter::SoilReaders(const SheetArea& where, std::vector<std::size_t>& readers) {
  const std::vector<std::size_t> more = dependencies_.SoilReaders(where);
  readers.insert(readers.end(), more.begin(), more.end());
}

}  // namespace qcalc
