#include "logic/decisions.h"

namespace quillmere::logic {

Decision DecideByOther(const XLOPER12& item, bool decider) {
  if (IsErrorCell(item)) return kErroneous;
  // No truth value counts as FALSE.
  return (TruthOf(item) == TruthValue::kTrue) == decider ? kDecided : kOpen;
}

}  // namespace quillmere::logic
