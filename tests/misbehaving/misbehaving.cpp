#include "tests/misbehaving/misbehaving.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

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

void Register(XStringView procedure, XStringView type, XStringView name, XStringView otherModule) {
  XLOPER12 module = OfType(xltypeNil), result = OfType(xltypeNil);
  CallExcel(xlGetName, &module, {});
  XLOPER12 texts[] = {Text(procedure), Text(type), Text(name), Text(otherModule)};
  CallExcel(xlfRegister, &result, {otherModule.empty() ? &module : &texts[3], &texts[0], &texts[1], &texts[2]});
  CallExcel(xlFree, nullptr, {&module});
  for (const XLOPER12& text : texts) delete[] text.val.str;
}

}  // namespace misbehaving

namespace {

int closingAnswer = 1;

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
  Register(XTEXT("Die"), XTEXT("UJ$"), XTEXT("DIE"));
  Register(XTEXT("PlusOne"), XTEXT("UQ$"), XTEXT("PLUS.ONE"));
  Register(XTEXT("PlusOne"), XTEXT("UQ"), XTEXT("PLUS.ONE.MAIN"));
  Register(XTEXT("SheetName"), XTEXT("U"), XTEXT("SHEET.NAME"));
  Register(XTEXT("ByValue"), XTEXT("UJAIC%CD%K%$"), XTEXT("BY.VALUE"));
  Register(XTEXT("Echo4"), XTEXT("RP"), XTEXT("ECHO.VALUE4"));
  Register(XTEXT("Echo4"), XTEXT("RR"), XTEXT("ECHO.REFERENCE4"));
  Register(XTEXT("Coerced"), XTEXT("UUQ"), XTEXT("COERCED"));
  Register(XTEXT("Called"), XTEXT("UQUUUU"), XTEXT("CALLED"));
  Register(XTEXT("Called"), XTEXT("UQUUUU#"), XTEXT("CALLED.MACRO"));
  Register(XTEXT("Allocate"), XTEXT("JJJ$"), XTEXT("ALLOCATE"));
  Register(XTEXT("Enlarge"), XTEXT("J$"), XTEXT("ENLARGE"));
  Register(XTEXT("FreeCount"), XTEXT("U"), XTEXT("FREE.COUNT"));
  Register(XTEXT("FreeCountUnmarked"), XTEXT("U"), XTEXT("FREE.COUNT.UNMARKED"));
  Register(XTEXT("Describe"), XTEXT("UU"), XTEXT("DESCRIBE"));
  Register(XTEXT("KeepLent"), XTEXT("U$"), XTEXT("KEEP.LENT"));
  Register(XTEXT("FreeTwice"), XTEXT("U$"), XTEXT("FREE.TWICE"));
  Register(XTEXT("FreeEmptied"), XTEXT("U$"), XTEXT("FREE.EMPTIED"));
  Register(XTEXT("FreeForeign"), XTEXT("U$"), XTEXT("FREE.FOREIGN"));
  Register(XTEXT("WriteAfterFree"), XTEXT("U$"), XTEXT("WRITE.AFTER.FREE"));
  Register(XTEXT("WritePast"), XTEXT("UQ$"), XTEXT("WRITE.PAST"));
  Register(XTEXT("BadMemory"), XTEXT("UJ"), XTEXT("BAD.MEMORY"));
  Register(XTEXT("KeepOwn"), XTEXT("UA"), XTEXT("KEEP.OWN"));
  Register(XTEXT("ChangeThread"), XTEXT("UJ$"), XTEXT("CHANGE.THREAD"));
  Register(XTEXT("LeaveThread"), XTEXT("U"), XTEXT("LEAVE.THREAD"));
  Register(XTEXT("ChangeArgument"), XTEXT("UQQ$"), XTEXT("CHANGE.ARGUMENT"));
  Register(XTEXT("BothBits"), XTEXT("U"), XTEXT("BOTH.BITS"));
  Register(XTEXT("FreeNotLent"), XTEXT("U"), XTEXT("FREE.NOT.LENT"));
  Register(XTEXT("Owned4"), XTEXT("P"), XTEXT("OWNED.VALUE4"));
  Register(XTEXT("ForgetBit"), XTEXT("U"), XTEXT("FORGET.BIT"));
  Register(XTEXT("StaticResult"), XTEXT("U$"), XTEXT("STATIC.RESULT"));
  Register(XTEXT("BadValue"), XTEXT("UJ"), XTEXT("BAD.VALUE"));
  Register(XTEXT("BadValue"), XTEXT("QJ"), XTEXT("BAD.PLAIN.VALUE"));
  Register(XTEXT("BadCallback"), XTEXT("UJ$"), XTEXT("BAD.CALLBACK"));
  Register(XTEXT("BadCallback"), XTEXT("UJ"), XTEXT("BAD.CALLBACK.MAIN"));
  Register(XTEXT("BadCallback"), XTEXT("UJ#"), XTEXT("BAD.CALLBACK.MACRO"));
  Register(XTEXT("RefuseToClose"), XTEXT("U"), XTEXT("REFUSE.TO.CLOSE"));
  Register(XTEXT("BadRegistration"), XTEXT("UJ#"), XTEXT("BAD.REGISTRATION"));
  Register(XTEXT("RegisterAs"), XTEXT("UQQQQQ#"), XTEXT("REGISTER.AS"));
  return 1;
}
