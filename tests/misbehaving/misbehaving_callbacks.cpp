// Callbacks and registrations that Excel refuses.
#include <thread>

#include "tests/misbehaving/misbehaving.h"

using namespace misbehaving;

// Called by name from outside.
#pragma GCC diagnostic ignored "-Wmissing-declarations"

/// `which` chooses one of several callbacks that Excel refuses: up to 3 by their argument. The result is the code.
QCALC_EXPORT XLOPER12* BadCallback(std::int32_t which) {
  XLOPER12 result = OfType(xltypeNil), caller = OfType(xltypeNil), nothing = OfType(xltypeMulti);
  XLOPER12 elsewhere = OfType(xltypeRef), text = Text(XTEXT("text"));
  elsewhere.val.mref = {&firstCell, 0xBAD};
  text.val.str[0] = 9;
  XLOPER12* const arguments[] = {nullptr, &nothing, &elsewhere, &text};
  int code = 0;
  if (which <= 3) code = CallExcel(xlCoerce, &result, {arguments[which]});
  if (which == 4) std::thread([&] { code = CallExcel(xlfCaller, &result, {}); }).join();
  if (which == 5 && CallExcel(xlfCaller, &caller, {}) >= 0) code = CallExcel(xlfCaller, &result, {});
  callsBackWhenFreeing = which == 6;
  delete[] text.val.str;
  return Owned(Number(CodeOf(code, result)));
}

/// Registers by those texts and that type of macro; PlusOne of this library as a function of one value, where nothing
/// else is said. 1 when Excel takes it, else its error.
QCALC_EXPORT XLOPER12* RegisterAs(XLOPER12* name, XLOPER12* argumentNames, XLOPER12* macroType, XLOPER12* shortcut,
                                  XLOPER12* helpTopic, XLOPER12* type, XLOPER12* procedure, XLOPER12* module) {
  const auto either = [](XLOPER12* told, XLOPER12& own) { return told->xltype == xltypeMissing ? &own : told; };
  XLOPER12 ownModule = OfType(xltypeNil), result = OfType(xltypeNil), category = OfType(xltypeMissing);
  XLOPER12 ownProcedure = Text(XTEXT("PlusOne")), ownType = Text(XTEXT("UQ"));
  CallExcel(xlGetName, &ownModule, {});
  CallExcel(xlfRegister, &result,
            {either(module, ownModule), either(procedure, ownProcedure), either(type, ownType), name, argumentNames,
             macroType, &category, shortcut, helpTopic});
  CallExcel(xlFree, nullptr, {&ownModule});
  delete[] ownProcedure.val.str;
  delete[] ownType.val.str;
  return Owned(result.xltype == xltypeNum ? Number(1) : result);
}
