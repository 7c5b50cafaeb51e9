#include "lookup/lookup_memory.h"

#include <utility>

#include "frame/callbacks/callbacks.h"
#include "frame/callbacks/caller.h"
#include "frame/convert/single_value.h"
#include "frame/errors/attempt.h"
#include "frame/text/integer_text.h"
#include "frame/values/cell_copy.h"
#include "workbook/id_stores.h"

namespace quillmere::lookup {
namespace {

/// Narrows the lines from `first` to `last` to the one of a key row: all key rows share a single line. False when there
/// is no such line.
bool NarrowTo(std::int32_t& first, std::int32_t& last, std::int32_t keyRow) {
  if (keyRow > last - first && first != last) return false;
  if (first != last) first += keyRow;
  last = first;
  return true;
}

}  // namespace

std::optional<MemoryChoice> ReadMemoryChoice(const CXlOper& memTypeName) {
  const XLOPER12* const cell = OnlyCell(memTypeName);
  if (!cell) return std::nullopt;
  const CXlOper value = CXlOper::BorrowCell(*cell);
  if (value.IsText()) {
    if (value.AsText().empty()) return MemoryChoice{MemoryType::kRowColumn, {}};
    MemoryChoice choice{MemoryType::kNamed, {}};
    AssignText(choice.name, value.AsText());
    return choice;
  }
  if (!value.IsNumber() && !value.IsInteger()) return std::nullopt;
  const double number = value.AsNumber();
  if (!(number > -1 && number < 4)) return std::nullopt;
  return MemoryChoice{static_cast<MemoryType>(number), {}};
}

LookupMemory::LookupMemory(MemoryChoice choice, ListDirection direction)
    : choice_(std::move(choice)), direction_(direction) {}

void LookupMemory::RequireCallingCells() {
  AskCaller();
  if (!caller_.IsSet()) throw CXlErrorException(xlerrValue);
}

std::optional<std::int32_t> LookupMemory::Recall(std::int32_t keyRow) {
  std::optional<std::int32_t> found;
  if (!Attempt([&] { found = Find(keyRow); })) choice_.type = MemoryType::kNone;
  return found;
}

void LookupMemory::Remember(std::int32_t keyRow, std::int32_t position) {
  bool isStored = false;
  Attempt([&] { isStored = Store(keyRow, position); });
  if (!isStored) choice_.type = MemoryType::kNone;
}

void LookupMemory::AskCaller() {
  if (callerIsKnown_) return;
  caller_ = CallingCells();
  if (caller_.IsSet() && UsesTextStore()) sheetName_ = CallExcelOrValueError(xlSheetNm, caller_);
  callerIsKnown_ = true;
}

std::optional<std::int32_t> LookupMemory::Find(std::int32_t keyRow) {
  const std::optional<XLREF12> place = PlaceOf(keyRow);
  if (!place) return std::nullopt;
  if (UsesTextStore()) {
    const std::optional<XStringView> key = TextKey(*place);
    return key ? workbook::FindRowId(*key) : std::nullopt;
  }
  return direction_ == ListDirection::kDown ? workbook::FindId(workbook::NumberStore::kRowIds, place->rwFirst + 1)
                                            : workbook::FindId(workbook::NumberStore::kColumnIds, place->colFirst + 1);
}

/// False when the store stayed locked; a place that has no memory is passed over.
bool LookupMemory::Store(std::int32_t keyRow, std::int32_t position) {
  const std::optional<XLREF12> place = PlaceOf(keyRow);
  if (!place) return true;
  if (UsesTextStore()) {
    const std::optional<XStringView> key = TextKey(*place);
    return !key || workbook::StoreRowId(*key, position);
  }
  return direction_ == ListDirection::kDown
             ? workbook::StoreId(workbook::NumberStore::kRowIds, place->rwFirst + 1, position)
             : workbook::StoreId(workbook::NumberStore::kColumnIds, place->colFirst + 1, position);
}

bool LookupMemory::UsesTextStore() const noexcept { return IsInUse() && choice_.type != MemoryType::kNumber; }

/// The calling cell of a key row.
std::optional<XLREF12> LookupMemory::PlaceOf(std::int32_t keyRow) {
  if (!IsInUse()) return std::nullopt;
  AskCaller();
  if (!caller_.IsSet()) return std::nullopt;
  XLREF12 place = caller_.Areas().front();
  const bool isThere = direction_ == ListDirection::kDown ? NarrowTo(place.rwFirst, place.rwLast, keyRow)
                                                          : NarrowTo(place.colFirst, place.colLast, keyRow);
  return isThere ? std::optional(place) : std::nullopt;
}

std::optional<XStringView> LookupMemory::TextKey(const XLREF12& place) {
  if (!textKeysAreReady_) PrepareTextKeys();
  if (head_.empty() && tail_.empty()) return std::nullopt;
  key_.assign(head_);
  AppendAddress(place);
  key_.append(tail_);
  // The functions that list the stores hand keys to Excel as texts.
  if (key_.size() > kXlMaxText) return std::nullopt;
  return key_;
}

/// Sets what all keys of the call share:
///
///     kCell       [Book]Sheet!R5C3
///     kRowColumn  [Book]Sheet!R5       across: [Book]Sheet!C3
///     kNamed      R5!4!name[Book]      across: C3!4!name[Book]    (the length of the name before it)
///
/// No two places share one, whatever the names hold. The first two end in their address, which holds no "!": the last
/// "!" is where the sheet ends. The third begins with its address and tells how long the name is; it ends in "]", the
/// others in a digit. Where Excel knows no name of the sheet, or a book is asked for and it names none, nothing is set.
void LookupMemory::PrepareTextKeys() {
  textKeysAreReady_ = true;
  if (!sheetName_.IsText()) return;
  XString sheet;
  AssignText(sheet, sheetName_.AsText());
  if (choice_.type != MemoryType::kNamed) {
    head_ = std::move(sheet) + XTEXT('!');
    return;
  }
  const std::size_t bookEnd = sheet.rfind(XTEXT(']'));
  if (bookEnd == XString::npos) return;
  tail_ = XTEXT('!');
  tail_ += IntegerText(choice_.name.size()).View();
  tail_ += XTEXT('!');
  tail_ += choice_.name;
  tail_.append(sheet, 0, bookEnd + 1);
}

void LookupMemory::AppendAddress(const XLREF12& place) {
  const bool isCell = choice_.type == MemoryType::kCell;
  if (isCell || direction_ == ListDirection::kDown) {
    key_ += XTEXT('R');
    key_ += IntegerText(place.rwFirst + 1).View();
  }
  if (isCell || direction_ == ListDirection::kAcross) {
    key_ += XTEXT('C');
    key_ += IntegerText(place.colFirst + 1).View();
  }
}

}  // namespace quillmere::lookup
