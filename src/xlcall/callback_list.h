// Every callback that Excel's C API publishes a number for: one list, shared by the add-in and by the host.
//
// XLCALL_SPECIAL, XLCALL_FUNCTION and XLCALL_COMMAND name the API-only functions, the worksheet and macro functions and
// the commands; the number of a special or a command is completed with its flag bit.
#pragma once

#include <iterator>
#include <string_view>

#include "xlcall/xlcall.h"

// Entries side by side: clang-format would move each further to the right.
// clang-format off
#define XLCALL_CALLBACKS(SPECIAL, FUNCTION, COMMAND)                                                                   \
  SPECIAL(xlFree, 0) SPECIAL(xlStack, 1) SPECIAL(xlCoerce, 2) SPECIAL(xlSet, 3) SPECIAL(xlSheetId, 4)                  \
  SPECIAL(xlSheetNm, 5) SPECIAL(xlAbort, 6) SPECIAL(xlGetInst, 7) SPECIAL(xlGetHwnd, 8) SPECIAL(xlGetName, 9)          \
  SPECIAL(xlEnableXLMsgs, 10) SPECIAL(xlDisableXLMsgs, 11) SPECIAL(xlDefineBinaryName, 12)                             \
  SPECIAL(xlGetBinaryName, 13) SPECIAL(xlAsyncReturn, 16) SPECIAL(xlEventRegister, 17)                                 \
  SPECIAL(xlRunningOnCluster, 18) SPECIAL(xlGetInstPtr, 19)                                                            \
  FUNCTION(xlfCount, 0) FUNCTION(xlfSum, 4) FUNCTION(xlfAverage, 5) FUNCTION(xlfMin, 6) FUNCTION(xlfMax, 7)            \
  FUNCTION(xlfRow, 8) FUNCTION(xlfColumn, 9) FUNCTION(xlfNa, 10) FUNCTION(xlfFixed, 14) FUNCTION(xlfLookup, 28)        \
  FUNCTION(xlfIndex, 29) FUNCTION(xlfRept, 30) FUNCTION(xlfMid, 31) FUNCTION(xlfLen, 32) FUNCTION(xlfValue, 33)        \
  FUNCTION(xlfText, 48) FUNCTION(xlfMatch, 64) FUNCTION(xlfAreas, 75) FUNCTION(xlfRows, 76)                            \
  FUNCTION(xlfColumns, 77) FUNCTION(xlfOffset, 78) FUNCTION(xlfAbsref, 79) FUNCTION(xlfRelref, 80)                     \
  FUNCTION(xlfSearch, 82) FUNCTION(xlfTranspose, 83) FUNCTION(xlfType, 86) FUNCTION(xlfEcho, 87)                       \
  FUNCTION(xlfSetName, 88) FUNCTION(xlfCaller, 89) FUNCTION(xlfDeref, 90) FUNCTION(xlfWindows, 91)                     \
  FUNCTION(xlfDocuments, 93) FUNCTION(xlfActiveCell, 94) FUNCTION(xlfSelection, 95) FUNCTION(xlfHlookup, 101)          \
  FUNCTION(xlfVlookup, 102) FUNCTION(xlfIsref, 105) FUNCTION(xlfGetFormula, 106) FUNCTION(xlfGetName, 107)             \
  FUNCTION(xlfExec, 110) FUNCTION(xlfChar, 111) FUNCTION(xlfExact, 117) FUNCTION(xlfTrim, 118)                         \
  FUNCTION(xlfCode, 121) FUNCTION(xlfFind, 124) FUNCTION(xlfCell, 125) FUNCTION(xlfIsblank, 129) FUNCTION(xlfT, 130)   \
  FUNCTION(xlfN, 131) FUNCTION(xlfGetDef, 145) FUNCTION(xlfReftext, 146) FUNCTION(xlfTextref, 147)                     \
  FUNCTION(xlfIndirect, 148) FUNCTION(xlfRegister, 149) FUNCTION(xlfCall, 150) FUNCTION(xlfCounta, 169)                \
  FUNCTION(xlfCancelKey, 170) FUNCTION(xlfGetBar, 182) FUNCTION(xlfGetCell, 185) FUNCTION(xlfGetWorkspace, 186)        \
  FUNCTION(xlfGetWindow, 187) FUNCTION(xlfGetDocument, 188) FUNCTION(xlfUnregister, 201) FUNCTION(xlfAddress, 219)     \
  FUNCTION(xlfSumproduct, 228) FUNCTION(xlfVolatile, 237) FUNCTION(xlfLastError, 238)                                  \
  FUNCTION(xlfFormulaConvert, 241) FUNCTION(xlUDF, 255) FUNCTION(xlfEvaluate, 257) FUNCTION(xlfErrorType, 261)         \
  FUNCTION(xlfAppTitle, 262) FUNCTION(xlfRegisterId, 267) FUNCTION(xlfGetWorkbook, 268) FUNCTION(xlfSubtotal, 344)     \
  FUNCTION(xlfSumif, 345) FUNCTION(xlfCountif, 346) FUNCTION(xlfCountblank, 347) FUNCTION(xlfRtd, 379)                 \
  FUNCTION(xlfIferror, 480) FUNCTION(xlfCountifs, 481) FUNCTION(xlfSumifs, 482) FUNCTION(xlfUnichar, 580)              \
  FUNCTION(xlfNumbervalue, 585)                                                                                        \
  COMMAND(xlcBeep, 0) COMMAND(xlcOpen, 1) COMMAND(xlcClose, 16) COMMAND(xlcRun, 17) COMMAND(xlcCalculateNow, 31)       \
  COMMAND(xlcCalculation, 32) COMMAND(xlcDefineName, 61) COMMAND(xlcFormula, 96) COMMAND(xlcActivate, 103)             \
  COMMAND(xlcSelect, 109) COMMAND(xlcDeleteName, 110) COMMAND(xlcAlert, 118) COMMAND(xlcNew, 119)                      \
  COMMAND(xlcMessage, 122) COMMAND(xlcOnWindow, 138) COMMAND(xlcOnData, 139) COMMAND(xlcEcho, 141)                     \
  COMMAND(xlcFileClose, 144) COMMAND(xlcOnTime, 148) COMMAND(xlcError, 165) COMMAND(xlcCalculateDocument, 167)         \
  COMMAND(xlcOnKey, 168) COMMAND(xlcOnRecalc, 227) COMMAND(xlcOnDoubleclick, 279) COMMAND(xlcOnEntry, 280)             \
  COMMAND(xlcWorkbookSelect, 291) COMMAND(xlcWorkbookActivate, 292) COMMAND(xlcWorkbookInsert, 354)                    \
  COMMAND(xlcOnSheet, 471)
// clang-format on

#define XLCALL_SPECIAL_NUMBER(name, number) name = (number) | xlSpecial,
#define XLCALL_FUNCTION_NUMBER(name, number) name = (number),
#define XLCALL_COMMAND_NUMBER(name, number) name = (number) | xlCommand,
enum : int { XLCALL_CALLBACKS(XLCALL_SPECIAL_NUMBER, XLCALL_FUNCTION_NUMBER, XLCALL_COMMAND_NUMBER) };
#undef XLCALL_SPECIAL_NUMBER
#undef XLCALL_FUNCTION_NUMBER
#undef XLCALL_COMMAND_NUMBER

/// A callback's name as the API writes it, and its number with its flag bit.
struct XlCallback {
  std::string_view name;
  int number;
};

#define XLCALL_ENTRY(name, number) {#name, name},
inline constexpr XlCallback kXlCallbacks[] = {XLCALL_CALLBACKS(XLCALL_ENTRY, XLCALL_ENTRY, XLCALL_ENTRY)};
#undef XLCALL_ENTRY

/// The entry for a function number, its xlIntl and xlPrompt bits ignored; null when no such number is published.
constexpr const XlCallback* FindXlCallback(int number) {
  number &= ~(xlIntl | xlPrompt);
  for (const XlCallback& callback : kXlCallbacks)
    if (callback.number == number) return &callback;
  return nullptr;
}

/// The entry of that name; null when there is none.
constexpr const XlCallback* FindXlCallback(std::string_view name) {
  for (const XlCallback& callback : kXlCallbacks)
    if (callback.name == name) return &callback;
  return nullptr;
}
