// An add-in that breaks the rules of Excel's C API, one rule a function, for the host's own tests. The first few
// functions keep them all, so that a test can tell a strict host from one that always complains.
#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <limits>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "host/library/export.h"
#include "xlcall/callback_list.h"

namespace {

XlMdCallBack12 callback = nullptr;
bool callsBackWhenFreeing = false;
int closingAnswer = 1;
XLOPER12 freeCount{{.num = 0}, xltypeNum | xlbitDLLFree};
std::vector<void*> keptBlocks;
XLMREF12 firstCell{1, {{0, 0, 0, 0}}};
XCHAR* forgotten = nullptr;  // freed at the end, so that the leak checker stays out of it

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

/// A text of which the caller owns the units.
XLOPER12 Text(XStringView text) {
  XLOPER12 oper = OfType(xltypeStr);
  oper.val.str = new XCHAR[text.size() + 1];
  oper.val.str[0] = static_cast<XCHAR>(text.size());
  std::copy(text.begin(), text.end(), oper.val.str + 1);
  return oper;
}

/// A result that the host gives back through xlAutoFree12, as all results here that own memory do by rights.
XLOPER12* Owned(const XLOPER12& oper) {
  auto* result = new XLOPER12(oper);
  result->xltype |= xlbitDLLFree;
  return result;
}

/// What a callback answered, as a result that the host frees; after a failure its code, made negative.
XLOPER12* Lent(int code, const XLOPER12& answer) {
  if (code != xlretSuccess) return Owned(Number(-code));
  static XLOPER12 slot;
  slot = answer;
  slot.xltype |= xlbitXLFree;
  return &slot;
}

/// The name of the calling sheet, lent by the host.
XLOPER12 LentText() {
  XLOPER12 caller = OfType(xltypeNil), name = OfType(xltypeNil);
  CallExcel(xlfCaller, &caller, {});
  CallExcel(xlSheetNm, &name, {&caller});
  CallExcel(xlFree, nullptr, {&caller});
  return name;
}

/// Registers under the name of a module, by default the library's own.
void Register(XStringView procedure, XStringView type, XStringView name, XStringView otherModule = {}) {
  XLOPER12 module = OfType(xltypeNil), result = OfType(xltypeNil);
  CallExcel(xlGetName, &module, {});
  XLOPER12 texts[] = {Text(procedure), Text(type), Text(name), Text(otherModule)};
  CallExcel(xlfRegister, &result, {otherModule.empty() ? &module : &texts[3], &texts[0], &texts[1], &texts[2]});
  CallExcel(xlFree, nullptr, {&module});
  for (const XLOPER12& text : texts) delete[] text.val.str;
}

}  // namespace

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
  if ((oper->xltype & 0x0FFF) == xltypeStr) delete[] oper->val.str;
  if ((oper->xltype & 0x0FFF) == xltypeMulti) delete[] oper->val.array.lparray;
  delete oper;
}

// What keeps the rules.

QCALC_EXPORT XLOPER12* PlusOne(XLOPER12* argument) { return Owned(Number(argument->val.num + 1)); }

QCALC_EXPORT XLOPER12* SheetName() {
  XLOPER12 name = LentText();
  name.xltype |= xlbitXLFree;
  static XLOPER12 result;
  result = name;
  return &result;
}

QCALC_EXPORT XLOPER12* ByValue(std::int32_t whole, std::uint16_t truth, std::int16_t small, const XCHAR* wide,
                               const char* narrow, const XCHAR* counted, const FP12* matrix) {
  double sum = whole + truth * 10 + small * 100;
  sum += 1000 * static_cast<double>(XStringView(wide).size()) + 10'000 * static_cast<double>(std::strlen(narrow));
  sum += 100'000 * static_cast<double>(counted[0]);
  for (int i = 0; i < matrix->rows * matrix->columns; ++i) sum += 1'000'000 * matrix->array[i];
  return Owned(Number(sum));
}

QCALC_EXPORT XLOPER* Echo4(XLOPER* argument) { return argument; }

QCALC_EXPORT XLOPER12* Coerced(XLOPER12* argument, XLOPER12* mask) {
  XLOPER12 result = OfType(xltypeNil);
  XLOPER12 type = Integer(static_cast<std::int32_t>(mask->val.num));
  return Lent(CallExcel(xlCoerce, &result, {argument, &type}), result);
}

/// What Excel's own function of that number gives for the arguments behind it, up to the last that is not left out; the
/// code, made negative, when it fails.
QCALC_EXPORT XLOPER12* Called(XLOPER12* number, XLOPER12* first, XLOPER12* second, XLOPER12* third, XLOPER12* fourth) {
  XLOPER12* arguments[] = {first, second, third, fourth};
  int count = 4;
  while (count > 0 && arguments[count - 1]->xltype == xltypeMissing) --count;
  XLOPER12 answer = OfType(xltypeNil);
  return Lent(callback(static_cast<int>(number->val.num), count, arguments, &answer), answer);
}

/// Allocates `count` blocks, by each function of the allocator in turn and with a callback in between, and frees all
/// but the first `kept` again. How many it was given.
QCALC_EXPORT std::int32_t Allocate(std::int32_t count, std::int32_t kept) {
  std::int32_t given = 0;
  for (std::int32_t i = 0; i < count; ++i) {
    XLOPER12 caller = OfType(xltypeNil);
    XLOPER12* lent = &caller;
    callback(xlfCaller, 0, nullptr, &caller);
    callback(xlFree, 1, &lent, nullptr);
    void* block = i % 3 == 0 ? std::malloc(100) : i % 3 == 1 ? std::calloc(10, 10) : std::realloc(nullptr, 100);
    if (!block) continue;
    ++given;
    if (i < kept)
      keptBlocks[static_cast<std::size_t>(i)] = block;
    else
      std::free(block);
  }
  return given;
}

/// Tries to make a block larger, and frees it. 1 when that went well, 0 when it stayed as it was, -1 when it was lost.
QCALC_EXPORT std::int32_t Enlarge() {
  auto* block = static_cast<char*>(std::malloc(10));
  std::strcpy(block, "contents");
  void* const larger = std::realloc(block, 10'000);
  auto* const now = larger ? static_cast<char*>(larger) : block;
  const std::int32_t result = std::strcmp(now, "contents") != 0 ? -1 : larger ? 1 : 0;
  std::free(now);
  return result;
}

/// How often its result has been freed before.
QCALC_EXPORT XLOPER12* FreeCount() { return &freeCount; }

/// What has arrived: -1 for a null pointer, else the type's bits; for an array its size and the type of its first
/// element, for a text its length.
QCALC_EXPORT XLOPER12* Describe(XLOPER12* argument) {
  static XLOPER12 numbers[4];
  static XLOPER12 result;
  for (XLOPER12& number : numbers) number = Number(0);
  numbers[0].val.num = argument ? static_cast<double>(argument->xltype) : -1;
  if (argument && (argument->xltype & 0x0FFF) == xltypeStr) numbers[1].val.num = argument->val.str[0];
  if (argument && (argument->xltype & 0x0FFF) == xltypeMulti) {
    numbers[1].val.num = argument->val.array.rows;
    numbers[2].val.num = argument->val.array.columns;
    numbers[3].val.num = static_cast<double>(argument->val.array.lparray[0].xltype);
  }
  result = OfType(xltypeMulti);
  result.val.array.lparray = numbers;
  result.val.array.rows = 1;
  result.val.array.columns = 4;
  return &result;
}

// What breaks them.

QCALC_EXPORT XLOPER12* KeepLent() {
  LentText();
  return Owned(Number(1));
}

QCALC_EXPORT XLOPER12* FreeTwice() {
  XLOPER12 name = LentText();
  XLOPER12 copy = name;
  CallExcel(xlFree, nullptr, {&name});
  CallExcel(xlFree, nullptr, {&copy});
  return Owned(Number(1));
}

QCALC_EXPORT XLOPER12* FreeEmptied() {
  XLOPER12 name = LentText();
  CallExcel(xlFree, nullptr, {&name});
  CallExcel(xlFree, nullptr, {&name});
  return Owned(Number(1));
}

QCALC_EXPORT XLOPER12* FreeForeign() {
  XLOPER12 own = Text(XTEXT("mine"));
  XCHAR* units = own.val.str;
  CallExcel(xlFree, nullptr, {&own});
  delete[] units;
  return Owned(Number(1));
}

QCALC_EXPORT XLOPER12* WriteAfterFree() {
  XLOPER12 name = LentText();
  XCHAR* units = name.val.str;
  CallExcel(xlFree, nullptr, {&name});
  units[1] = 'x';
  return Owned(Number(1));
}

QCALC_EXPORT XLOPER12* ChangeArgument(XLOPER12*, XLOPER12* argument) {
  if ((argument->xltype & 0x0FFF) == xltypeMulti)
    argument->val.array.lparray[0].val.num = 99;
  else
    argument->val.num = 99;
  return Owned(Number(1));
}

QCALC_EXPORT XLOPER12* BothBits() {
  static XLOPER12 result;
  result = Number(1);
  result.xltype |= xlbitXLFree | xlbitDLLFree;
  return &result;
}

QCALC_EXPORT XLOPER12* FreeNotLent() {
  static XCHAR units[] = {2, 'o', 'k'};
  static XLOPER12 result;
  result = OfType(xltypeStr | xlbitXLFree);
  result.val.str = units;
  return &result;
}

/// The library has no xlAutoFree that such a result could be given to.
QCALC_EXPORT XLOPER* Owned4() {
  static XLOPER result;
  result.xltype = xltypeBool | xlbitDLLFree;
  return &result;
}

QCALC_EXPORT XLOPER12* ForgetBit() {
  static XLOPER12 result;
  result = Text(XTEXT("lost"));
  forgotten = result.val.str;
  return &result;
}

/// One static array, which two threads that call at once get at once; it takes the host a while to copy.
QCALC_EXPORT XLOPER12* StaticResult() {
  static std::vector<XLOPER12> elements(kXlMaxRows, Number(1));
  static XLOPER12 result{{.array = {elements.data(), kXlMaxRows, 1}}, xltypeMulti};
  // No std::barrier: on Windows this library's may let a waiter miss the moment.
  static std::atomic<unsigned> calls{0};
  const unsigned mine = ++calls;
  while (calls < mine + mine % 2) std::this_thread::yield();
  return &result;
}

/// `which` chooses one of many values that no function may return.
QCALC_EXPORT XLOPER12* BadValue(std::int32_t which) {
  static XLOPER12 element;
  static XLOPER12 result;
  static XCHAR longText[2];
  longText[0] = static_cast<XCHAR>(40'000);
  element = Number(1);
  result = OfType(xltypeMulti);
  result.val.array.lparray = &element;
  result.val.array.rows = 1;
  result.val.array.columns = 1;
  switch (which) {
    case 1:
      return &(result = OfType(0x0200));
    case 2:
      return &(result = OfType(xltypeFlow));
    case 3:
      return &(result = OfType(xltypeBigData));
    case 4:
      return &(result = Number(std::numeric_limits<double>::quiet_NaN()));
    case 5:
      return &(result = OfType(xltypeStr));
    case 6:
      result = OfType(xltypeStr);
      result.val.str = longText;
      return &result;
    case 7:
      result.val.array.rows = 0;
      return &result;
    case 8:
      element = result;
      return &result;
    case 9:
      element.xltype |= xlbitDLLFree;
      return &result;
    case 10:
      element = Number(std::numeric_limits<double>::infinity());
      return &result;
    case 11:
      result = OfType(xltypeBool);
      result.val.xbool = 7;
      return &result;
    case 12:
      result = OfType(xltypeErr);
      result.val.err = -1;
      return &result;
    case 13:
      result = OfType(xltypeSRef);
      result.val.sref.count = 1;
      result.val.sref.ref = {5, 4, 0, 0};
      return &result;
    case 14:
      return &(result = OfType(xltypeNum | 0x2000));
    case 15:
      result = OfType(xltypeRef);
      result.val.mref = {&firstCell, 0xBAD};
      return &result;
    case 16:
      result = OfType(xltypeSRef);
      result.val.sref.count = 1;
      return &result;
    default:
      return nullptr;
  }
}

/// `which` chooses one of many callbacks that the place or the arguments forbid; the result is the code.
QCALC_EXPORT XLOPER12* BadCallback(std::int32_t which) {
  XLOPER12 result = OfType(xltypeNil);
  XLOPER12 one = Number(1), two = Integer(2), text = Text(XTEXT("text"));
  XLOPER12 nothing = OfType(xltypeMulti), caller = OfType(xltypeNil), elsewhere = OfType(xltypeRef);
  elsewhere.val.mref = {&firstCell, 0xBAD};
  int code = 0;
  switch (which) {
    case 1:
      code = CallExcel(xlfGetWorkspace, &result, {&two});
      break;
    case 2:
      code = CallExcel(9999, &result, {});
      break;
    case 3:
      std::thread([&] { code = CallExcel(xlfCaller, &result, {}); }).join();
      break;
    case 4:
      code = CallExcel(xlCoerce, &result, {&one, &two, &two});
      break;
    case 5:
      code = CallExcel(xlCoerce, &result, {nullptr});
      break;
    case 6:
      code = CallExcel(xlCoerce, &result, {&nothing});
      break;
    case 7:
      code = CallExcel(int{xlfSum} | xlPrompt, &result, {&one});
      break;
    case 8:
      code = CallExcel(xlcAlert, &result, {&text});
      break;
    case 9:
      code = CallExcel(xlSet, &result, {&one, &two});
      break;
    case 10:
      code = CallExcel(xlfIndirect, &result, {&text});
      break;
    case 11:
      code = CallExcel(xlGetName, &result, {});
      break;
    case 12:
      code = CallExcel(xlfCaller, &caller, {});
      code = CallExcel(xlfCaller, &result, {});
      break;
    case 13:
      callsBackWhenFreeing = true;
      break;
    case 14:
      code = CallExcel(xlAsyncReturn, &result, {&one, &two});
      break;
    case 15:
      code = CallExcel(xlUDF, &result, {&text});
      break;
    case 16:
      code = CallExcel(xlCoerce, &result, {&elsewhere});
      break;
    default:
      break;
  }
  delete[] text.val.str;
  const bool isValueError = result.xltype == xltypeErr && result.val.err == xlerrValue;
  if (code != xlretSuccess && !isValueError) code = -1;  // every failing callback sets its result
  return Owned(Number(code));
}

/// `which` chooses a registration that Excel refuses.
QCALC_EXPORT XLOPER12* BadRegistration(std::int32_t which) {
  switch (which) {
    case 1:
      Register(XTEXT("PlusOne"), XTEXT("UQ"), XString(256, 'N'));
      break;
    case 2:
      Register(XTEXT("PlusOne"), XTEXT("UQ#$"), XTEXT("MARKS"));
      break;
    case 3:
      Register(XTEXT("PlusOne"), XTEXT("UW"), XTEXT("LETTER"));
      break;
    case 4:
      Register(XTEXT("NotExported"), XTEXT("UQ"), XTEXT("EXPORT"));
      break;
    default:
      Register(XTEXT("PlusOne"), XTEXT("UQ"), XTEXT("MODULE"), XTEXT("other.xll"));
  }
  return Owned(Number(1));
}

/// Registers PlusOne by those texts and that type of macro. 1 when Excel takes it, else its error.
QCALC_EXPORT XLOPER12* RegisterAs(XLOPER12* name, XLOPER12* argumentNames, XLOPER12* macroType, XLOPER12* shortcut,
                                  XLOPER12* helpTopic) {
  XLOPER12 module = OfType(xltypeNil), result = OfType(xltypeNil), category = OfType(xltypeMissing);
  XLOPER12 procedure = Text(XTEXT("PlusOne")), type = Text(XTEXT("UQ"));
  CallExcel(xlGetName, &module, {});
  CallExcel(xlfRegister, &result,
            {&module, &procedure, &type, name, argumentNames, macroType, &category, shortcut, helpTopic});
  CallExcel(xlFree, nullptr, {&module});
  delete[] procedure.val.str;
  delete[] type.val.str;
  return Owned(result.xltype == xltypeNum ? Number(1) : result);
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
  Register(XTEXT("Describe"), XTEXT("UU"), XTEXT("DESCRIBE"));
  Register(XTEXT("KeepLent"), XTEXT("U$"), XTEXT("KEEP.LENT"));
  Register(XTEXT("FreeTwice"), XTEXT("U$"), XTEXT("FREE.TWICE"));
  Register(XTEXT("FreeEmptied"), XTEXT("U$"), XTEXT("FREE.EMPTIED"));
  Register(XTEXT("FreeForeign"), XTEXT("U$"), XTEXT("FREE.FOREIGN"));
  Register(XTEXT("WriteAfterFree"), XTEXT("U$"), XTEXT("WRITE.AFTER.FREE"));
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
