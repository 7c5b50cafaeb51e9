// For each callback: from where it may be made, with how many arguments, and who answers it.
#pragma once

#include "host/callbacks/handlers.h"

namespace qcalc {

/// Kinds of callbacks that Excel allows in the same places.
enum class CallbackKind {
  kFree,                ///< xlFree: everywhere
  kApi,                 ///< API-only functions: everywhere but in xlAutoFree
  kMainThreadApi,       ///< the same, but not in thread-safe functions
  kSet,                 ///< changes cells: commands alone
  kWorksheetFunction,   ///< thread-safe ones
  kMainThreadFunction,  ///< the others
  kReaching,            ///< thread-safe as long as what they reach is
  kInformation,         ///< macro-language functions: commands and macro-sheet equivalents
  kCommandEquivalent,   ///< commands alone
};

struct CallbackRule {
  CallbackKind kind;
  int fewest;
  int most;
  CallbackHandler handler;  ///< null: the host does not offer it
};

/// The rule of a callback of the published list.
CallbackRule RuleOf(const XlCallback& callback);

/// 0, or the code with which Excel refuses a callback of that kind there.
int RefusalCode(CallbackKind kind, Place place);

/// How messages name a place: "a thread-safe function".
const char* PlaceName(Place place);

}  // namespace qcalc
