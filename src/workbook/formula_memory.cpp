// Values that formulas keep, each under its calling cells and an ID of its own.
//
// Serves SETMEM, GETMEM.
#include "workbook/formula_memory.h"

#include <memory>
#include <optional>

#include "frame/callbacks/callbacks.h"
#include "frame/callbacks/caller.h"
#include "frame/convert/argument.h"
#include "frame/entry/process_end.h"
#include "frame/text/integer_text.h"
#include "frame/values/cell_copy.h"
#include "implementations/workbook.h"
#include "workbook/stores_mutex.h"
#include "workbook/value_map.h"

namespace quillmere::workbook {
namespace {

CUntilUnloaded<ValueMap> memory;

void AppendCell(XString& key, std::int32_t row, std::int32_t column) {
  key += XTEXT('R');
  key += IntegerText(row + 1).View();
  key += XTEXT('C');
  key += IntegerText(column + 1).View();
}

/// The key of what the calling cells keep under an ID: [Book]Sheet!R5C3?ID, or [Book]Sheet!R5C3:R9C4?ID. Neither a book
/// nor a sheet nor an address has a question mark, so the first one ends the address. Nothing where the formula stands
/// in no cells, or Excel does not tell.
std::optional<XString> MemoryKey(const CXlScalarArgument<ElementKind::kString>& setId) {
  const CXlOper caller = FindCallingCells();
  if (!caller.IsSet()) return std::nullopt;
  CXlOper sheet;
  if (TryCallExcel(sheet, xlSheetNm, caller) != xlretSuccess || !sheet.IsText()) return std::nullopt;
  const XString id = setId.Read();
  XString key;
  AssignText(key, sheet.AsText());
  key += XTEXT('!');
  const XLREF12& area = caller.Areas().front();
  AppendCell(key, area.rwFirst, area.colFirst);
  if (area.rwLast != area.rwFirst || area.colLast != area.colFirst) {
    key += XTEXT(':');
    AppendCell(key, area.rwLast, area.colLast);
  }
  key += XTEXT('?');
  key += id;
  return key;
}

class ForgettingHook final : public IXllCloseHook {
 public:
  void OnClose() override { memory->Clear(); }
};
constinit ForgettingHook forgettingHook;

}  // namespace

IXllCloseHook& FormulaMemoryCloseHook() noexcept { return forgettingHook; }

void Functions::SetMem(CXlOper& result, const CXlArgument& theValue,
                       const CXlScalarArgument<ElementKind::kString>& setId) {
  const CXlOper& value = theValue.Value();
  const std::optional<XString> key = MemoryKey(setId);
  if (!key) {
    result.SetError(xlerrNA);
    return;
  }
  auto kept = std::make_unique<ValueMap::Kept>(value.Clone());
  ValueMap::Entry& entry = memory->EntryOf(*key);
  ValueMap::Kept* replaced = nullptr;
  {
    // Whether the lock could be had makes no difference to the value: the map bears writers that do not hold it.
    const CStoreLock lock(StoresMutex(), kStoreWait);
    replaced = ValueMap::Exchange(entry, std::move(kept));
  }
  memory->Retire(replaced);
  result = CXlOper::Borrow(&value.Raw());
}

void Functions::GetMem(CXlOper& result, const CXlScalarArgument<ElementKind::kString>& setId) {
  if (const std::optional<XString> key = MemoryKey(setId)) result = memory->Read(*key);
  if (!result.IsSet()) result.SetError(xlerrNA);
}

}  // namespace quillmere::workbook
