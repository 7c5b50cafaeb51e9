// Callbacks and registrations that Excel refuses.
#include <thread>

#include "tests/misbehaving/misbehaving.h"

using namespace misbehaving;

// Called by name from outside.
#pragma GCC diagnostic ignored "-Wmissing-declarations"

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
    case 17:
      text.val.str[0] = 9;
      code = CallExcel(xlCoerce, &result, {&text});
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
