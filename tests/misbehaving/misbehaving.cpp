#include "tests/misbehaving/misbehaving.h"

#include <algorithm>
#include <cstdlib>
#include <sstream>
#include <stdexcept>
#include <string>

namespace misbehaving {

XlMdCallBack12 callback = nullptr;
bool callsBackWhenFreeing = false;
XLOPER12 freeCount{{.num = 0}, xltypeNum};
std::vector<void*> keptBlocks;
XCHAR* forgotten = nullptr;
XLMREF12 firstCell{1, {{0, 0, 0, 0}}};
XLOPER12 lentElement;
XLOPER12* unfreed = nullptr;

int CallExcel(int number, XLOPER12* result, std::initializer_list<XLOPER12*> arguments) {
  std::vector<XLOPER12*> all(arguments);
  return callback(number, static_cast<int>(all.size()), all.data(), result);
}

XLOPER12 OfType(std::uint32_t type) {
  XLOPER12 oper{};
  oper.xltype = type;
  return oper;
}

XLOPER12 Number(double number) {
  XLOPER12 oper = OfType(xltypeNum);
  oper.val.num = number;
  return oper;
}

XLOPER12 Integer(std::int32_t number) {
  XLOPER12 oper = OfType(xltypeInt);
  oper.val.w = number;
  return oper;
}

XLOPER12 Text(XStringView text) {
  XLOPER12 oper = OfType(xltypeStr);
  oper.val.str = new XCHAR[text.size() + 1];
  oper.val.str[0] = static_cast<XCHAR>(text.size());
  std::copy(text.begin(), text.end(), oper.val.str + 1);
  return oper;
}

XLOPER12* Owned(const XLOPER12& oper) {
  auto* result = new XLOPER12(oper);
  result->xltype |= xlbitDLLFree;
  return result;
}

XLOPER12 LentText() {
  XLOPER12 caller = OfType(xltypeNil), name = OfType(xltypeNil);
  CallExcel(xlfCaller, &caller, {});
  CallExcel(xlSheetNm, &name, {&caller});
  CallExcel(xlFree, nullptr, {&caller});
  return name;
}

int CodeOf(int code, const XLOPER12& result) {
  const bool isValueError = result.xltype == xltypeErr && result.val.err == xlerrValue;
  return code == xlretSuccess || isValueError ? code : -1;
}

}  // namespace misbehaving

namespace {

int closingAnswer = 1;

XString Wide(const std::string& text) { return XString(text.begin(), text.end()); }

/// Exports with their types and names.
constexpr const char* kFunctions =
    "Die UJ$ DIE  PlusOne UQ$ PLUS.ONE  PlusOne UQ PLUS.ONE.MAIN  SheetName U SHEET.NAME  ByValue UJAIC%CD%K%$ "
    "BY.VALUE "
    "Echo4 RP ECHO.VALUE4  Echo4 RR ECHO.REFERENCE4  Coerced UUQ COERCED  Called UQUUUU$ CALLED.SAFE "
    "Called UQUUUU CALLED  Called UQUUUU# CALLED.MACRO  Allocate JJJ$ ALLOCATE  Enlarge J$ ENLARGE "
    "FreeCount U FREE.COUNT  FreeCountUnmarked U FREE.COUNT.UNMARKED  Describe UU DESCRIBE  KeepLent U$ KEEP.LENT "
    "FreeTwice U$ FREE.TWICE  FreeEmptied U$ FREE.EMPTIED  FreeForeign U$ FREE.FOREIGN "
    "WriteAfterFree U$ WRITE.AFTER.FREE  WritePast UQ$ WRITE.PAST  BadMemory UJ BAD.MEMORY  KeepOwn UA KEEP.OWN "
    "ChangeThread UJ$ CHANGE.THREAD  LeaveThread U LEAVE.THREAD  LeaveHook U LEAVE.HOOK  ChangeArgument UQQ$ "
    "CHANGE.ARGUMENT "
    "BothBits U BOTH.BITS  FreeNotLent U FREE.NOT.LENT  Owned4 P OWNED.VALUE4  ForgetBit U FORGET.BIT "
    "StaticResult U$ STATIC.RESULT  BadValue UJ BAD.VALUE  BadValue QJ BAD.PLAIN.VALUE "
    "BadCallback UJ$ BAD.CALLBACK  RefuseToClose U REFUSE.TO.CLOSE  RegisterAs UQQQQQQQQ# REGISTER.AS ";

}  // namespace

using namespace misbehaving;

// Called by name from outside.
#pragma GCC diagnostic ignored "-Wmissing-declarations"

QCALC_EXPORT void SetExcel12EntryPt(XlMdCallBack12 entryPoint) { callback = entryPoint; }

QCALC_EXPORT int xlAutoClose() {
  for (void* block : keptBlocks) std::free(block);
  keptBlocks.clear();
  delete[] forgotten;
  forgotten = nullptr;
  return closingAnswer;
}

QCALC_EXPORT void xlAutoFree12(XLOPER12* oper) {
  if (oper == &freeCount) {
    ++oper->val.num;
    return;
  }
  if (callsBackWhenFreeing) {
    callsBackWhenFreeing = false;
    XLOPER12 caller = OfType(xltypeNil);
    CallExcel(xlfCaller, &caller, {});
  }
  if (oper == unfreed) return;
  if ((oper->xltype & 0x0FFF) == xltypeMulti && oper->val.array.lparray == &lentElement) {
    CallExcel(xlFree, nullptr, {&lentElement});
    oper->val.array.lparray = nullptr;
  }
  if ((oper->xltype & 0x0FFF) == xltypeStr) delete[] oper->val.str;
  if ((oper->xltype & 0x0FFF) == xltypeMulti) delete[] oper->val.array.lparray;
  delete oper;
}

/// xlAutoClose answers 0 from now on.
QCALC_EXPORT XLOPER12* RefuseToClose() {
  closingAnswer = 0;
  return Owned(Number(1));
}

QCALC_EXPORT int xlAutoOpen() {
  if (std::getenv("DIE_AT_OPENING")) throw std::runtime_error("thrown out of xlAutoOpen");
  keptBlocks.resize(10);
  XLOPER12 module = OfType(xltypeNil), result = OfType(xltypeNil);
  CallExcel(xlGetName, &module, {});
  std::istringstream functions(kFunctions);
  for (std::string procedure, type, name; functions >> procedure >> type >> name;) {
    XLOPER12 texts[3] = {Text(Wide(procedure)), Text(Wide(type)), Text(Wide(name))};
    CallExcel(xlfRegister, &result, {&module, &texts[0], &texts[1], &texts[2]});
    for (const XLOPER12& text : texts) delete[] text.val.str;
  }
  CallExcel(xlFree, nullptr, {&module});
  return 1;
}
