#include "host/callbacks/rules.h"

#include <algorithm>
#include <iterator>

namespace qcalc {
namespace {

using Kind = CallbackKind;

struct NumberedRule {
  int number;
  CallbackRule rule;
};

constexpr int kMany = kXlMaxArguments;

constexpr NumberedRule kRules[] = {
    {xlFree, {Kind::kFree, 1, kMany, nullptr}},  // answered by the dispatcher: it alone changes its arguments
    {xlStack, {Kind::kApi, 0, 0, HandleStack}},
    {xlCoerce, {Kind::kApi, 1, 2, HandleCoerce}},
    {xlSet, {Kind::kSet, 1, 2, HandleSet}},
    {xlSheetId, {Kind::kApi, 0, 1, HandleSheetId}},
    {xlSheetNm, {Kind::kApi, 1, 1, HandleSheetName}},
    {xlAbort, {Kind::kApi, 0, 1, HandleAbort}},
    {xlGetInst, {Kind::kApi, 0, 0, HandleGetInstance}},
    {xlGetHwnd, {Kind::kApi, 0, 0, HandleGetWindow}},
    {xlGetName, {Kind::kMainThreadApi, 0, 0, HandleGetName}},
    {xlEnableXLMsgs, {Kind::kApi, 0, 0, HandleNothing}},
    {xlDisableXLMsgs, {Kind::kApi, 0, 0, HandleNothing}},
    {xlGetInstPtr, {Kind::kApi, 0, 0, HandleGetInstancePointer}},
    {xlfCaller, {Kind::kApi, 0, 0, HandleCaller}},
    {xlUDF, {Kind::kReaching, 1, kMany, HandleUdf}},
    {xlfEvaluate, {Kind::kReaching, 1, 1, HandleEvaluate}},
    {xlfRtd, {Kind::kMainThreadFunction, 3, kMany, HandleRtd}},
    {xlfReftext, {Kind::kInformation, 1, 2, HandleReftext}},
    {xlfGetCell, {Kind::kInformation, 1, 2, HandleGetCell}},
    {xlfGetDocument, {Kind::kInformation, 1, 2, HandleGetDocument}},
    {xlfGetWorkbook, {Kind::kInformation, 1, 2, HandleGetWorkbook}},
    {xlfGetWorkspace, {Kind::kInformation, 1, 1, HandleGetWorkspace}},
    {xlfVolatile, {Kind::kInformation, 0, 1, HandleVolatile}},
    {xlfRegister, {Kind::kInformation, 1, kMany, HandleRegister}},
    {xlfUnregister, {Kind::kInformation, 1, 1, HandleUnregister}},
    {xlfSetName, {Kind::kInformation, 1, 2, HandleSetName}},
    {xlcAlert, {Kind::kCommandEquivalent, 1, 3, HandleAlert}},
    {xlcMessage, {Kind::kCommandEquivalent, 1, 2, HandleMessage}},
    {xlcEcho, {Kind::kCommandEquivalent, 0, 1, HandleEcho}},
    {xlcNew, {Kind::kCommandEquivalent, 0, 3, HandleNew}},
    {xlcFileClose, {Kind::kCommandEquivalent, 0, 2, HandleFileClose}},
};

// Macro-language functions that the host does not answer; where they are made from still counts.
constexpr int kUnansweredInformation[] = {
    xlfAbsref,    xlfRelref,     xlfEcho,      xlfDeref,     xlfWindows,        xlfDocuments, xlfActiveCell,
    xlfSelection, xlfGetFormula, xlfGetName,   xlfExec,      xlfGetDef,         xlfTextref,   xlfCall,
    xlfCancelKey, xlfGetBar,     xlfGetWindow, xlfLastError, xlfFormulaConvert, xlfAppTitle,  xlfRegisterId};

// Excel's own functions that are not thread-safe.
constexpr int kMainThreadFunctions[] = {xlfIndirect, xlfErrorType, xlfCell, xlfAddress};

template <std::size_t size>
bool Holds(const int (&numbers)[size], int number) {
  return std::find(std::begin(numbers), std::end(numbers), number) != std::end(numbers);
}

}  // namespace

CallbackRule RuleOf(const XlCallback& callback) {
  for (const NumberedRule& rule : kRules)
    if (rule.number == callback.number) return rule.rule;
  if (callback.number & xlCommand) return {Kind::kCommandEquivalent, 0, kMany, nullptr};
  if (callback.number & xlSpecial) return {Kind::kApi, 0, kMany, nullptr};
  if (Holds(kUnansweredInformation, callback.number)) return {Kind::kInformation, 0, kMany, nullptr};
  const Kind kind = Holds(kMainThreadFunctions, callback.number) ? Kind::kMainThreadFunction : Kind::kWorksheetFunction;
  return {kind, 0, kMany, HandleWorksheetFunction};
}

int RefusalCode(CallbackKind kind, Place place) {
  if (kind == Kind::kFree || place == Place::kCommand) return 0;
  switch (place) {
    case Place::kFreeing:
      return xlretInvXlfn;
    case Place::kThreadSafeFunction: {
      const bool isSafe = kind == Kind::kApi || kind == Kind::kWorksheetFunction || kind == Kind::kReaching;
      return isSafe ? 0 : xlretNotThreadSafe;
    }
    case Place::kFunction:
      if (kind == Kind::kInformation) return xlretInvXlfn;
      [[fallthrough]];
    default:
      return kind == Kind::kSet || kind == Kind::kCommandEquivalent ? xlretInvXlfn : 0;
  }
}

const char* PlaceName(Place place) {
  switch (place) {
    case Place::kThreadSafeFunction:
      return "a thread-safe function";
    case Place::kFunction:
      return "a worksheet function";
    case Place::kMacroFunction:
      return "a macro-sheet equivalent";
    case Place::kCommand:
      return "a command";
    case Place::kFreeing:
      return "xlAutoFree";
  }
  return "";
}

}  // namespace qcalc
