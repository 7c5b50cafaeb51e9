// The type text of a registration: what an export takes and returns, and its marks.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "xlcall/xchar.h"

namespace qcalc {

/// How one argument is passed, or the result returned: the letter of the type text, its "%" apart.
struct TypeLetter {
  char letter = 'Q';
  bool isWide = false;  ///< followed by "%"
  bool operator==(const TypeLetter&) const = default;
};

struct TypeText {
  TypeLetter result;
  std::vector<TypeLetter> arguments;
  bool isVolatile = false;         ///< "!"
  bool isMacroEquivalent = false;  ///< "#"
  bool isThreadSafe = false;       ///< "$"
  bool isClusterSafe = false;      ///< "&"

  /// Whether a reference can arrive: an argument of U or R.
  bool TakesReferences() const;
};

/// Reads a type text, or tells in a few words why Excel would not.
std::variant<TypeText, std::string> ParseTypeText(XStringView text);

/// Whether the host can pass arguments of that letter, and return results of it.
bool IsOfferedArgument(TypeLetter letter);
bool IsOfferedResult(TypeLetter letter);

}  // namespace qcalc
