// What a linear matcher runs: a tree as steps that name those behind them.
#pragma once

#include <cstdint>
#include <vector>

#include "text/regex/linear/syntax_tree.h"
#include "text/regex/linear/unit_classes.h"

namespace quillmere::text {

using StepPlace = std::uint16_t;

struct ProgramStep {
  enum class Kind : std::uint8_t {
    kUnit,       ///< takes a unit that the atom matches
    kAssertion,  ///< goes on where it holds
    kChoice,     ///< goes on to `next`, and to `other` if that comes to nothing
    kMatch,
  };

  Kind kind;
  Assertion assertion = {};
  StepPlace next = 0;
  StepPlace other = 0;
  UnitRow atom = 0;
};

/// In which direction a text is walked through.
enum class Direction { kForward, kBackward };

struct Program {
  std::vector<ProgramStep> steps;
  StepPlace matchBegin = 0;   ///< where a match begins
  StepPlace searchBegin = 0;  ///< where a search does, at any place further on if none begins here
};

/// The program of a tree, none (no steps) where it would be too long.
Program MakeProgram(const SyntaxTree& tree, Direction direction);

}  // namespace quillmere::text
