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

  /// Whether a reference can arrive or come back.
  bool MayBeReference() const { return letter == 'U' || letter == 'R'; }
};

/// In what form an argument or a result of a letter passes.
enum class Passing {
  kOper12,   ///< Q, U: a pointer to XLOPER12
  kOper,     ///< P, R: a pointer to XLOPER
  kText,     ///< C, D, wide or not: a pointer to units, counted or closed by a zero
  kMatrix,   ///< K, wide: a pointer to FP12
  kInteger,  ///< A, H, I, J: by value
};

struct TypeText {
  TypeLetter result;
  std::vector<TypeLetter> arguments;
  bool isVolatile = false;         ///< "!"
  bool isMacroEquivalent = false;  ///< "#"
  bool isThreadSafe = false;       ///< "$"
  bool isClusterSafe = false;      ///< "&"

  /// Whether a reference can arrive.
  bool TakesReferences() const;
};

/// Reads a type text, or tells in a few words why Excel would not.
std::variant<TypeText, std::string> ParseTypeText(XStringView text);

/// For the letters that the host offers.
Passing PassingOf(TypeLetter letter);

/// What stands in the type text of the 8-bit entry point in place of a letter of the 16-bit one.
TypeLetter NarrowLetter(TypeLetter letter);

/// Whether the host can pass arguments of that letter, and return results of it.
bool IsOfferedArgument(TypeLetter letter);
bool IsOfferedResult(TypeLetter letter);

}  // namespace qcalc
