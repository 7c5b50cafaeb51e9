// Expressions that are regular in the strict sense, as trees.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "text/regex/linear/unit_classes.h"
#include "xlcall/xchar.h"

namespace quillmere::text {

/// Assertions about the place between two units.
enum class Assertion : std::uint8_t { kLineBegin, kLineEnd, kWordEdge, kNoWordEdge, kBeginOfText, kEndOfText };

struct SyntaxNode {
  enum class Kind : std::uint8_t { kUnit, kAssertion, kSequence, kChoice, kRepeat };
  static constexpr std::uint16_t kNone = 0xFFFF;
  static constexpr std::uint16_t kEndless = 0xFFFF;

  Kind kind;
  bool mayBeEmpty;                            ///< whether it can match no unit
  Assertion assertion = {};                   ///< of kAssertion
  bool isLazy = false;                        ///< of kRepeat
  std::uint16_t least = 0, most = 0;          ///< of kRepeat; kEndless
  UnitRow atom = 0;                           ///< of kUnit
  std::uint16_t first = kNone, last = kNone;  ///< the parts of a sequence, the alternatives of a choice, what repeats
  std::uint16_t next = kNone, previous = kNone;  ///< beside it in the same
};

/// The root is the last node.
using SyntaxTree = std::vector<SyntaxNode>;

/// The tree of an expression that the library has compiled; nothing where it holds what is not read here: whatever is
/// not regular, and all of whose meaning to the library there is the least doubt.
std::optional<SyntaxTree> ReadSyntaxTree(XStringView expression, UnitClasses& classes);

}  // namespace quillmere::text
