#include "text/regex/linear/program.h"

namespace quillmere::text {
namespace {

using Kind = ProgramStep::Kind;

/// Writes steps from the end of an expression to its beginning, so that each knows what is behind it.
class Writer {
 public:
  Writer(const SyntaxTree& tree, Direction direction) : tree_(tree), direction_(direction) {}

  Program Write() {
    Program program;
    const StepPlace match = Add({Kind::kMatch});
    program.matchBegin = Emit(static_cast<std::uint16_t>(tree_.size() - 1), match);
    program.searchBegin = Choose(program.matchBegin, 0, false);
    const StepPlace skip = Add({.kind = Kind::kUnit, .next = program.searchBegin, .atom = kAnyUnitRow});
    if (steps_.size() >= kMostSteps) return {};
    steps_[program.searchBegin].other = skip;
    program.steps = std::move(steps_);
    return program;
  }

 private:
  static constexpr std::size_t kMostSteps = 500;

  StepPlace Add(const ProgramStep& step) {
    // Past the most only the last place is written, again and again.
    if (steps_.size() == kMostSteps) steps_.pop_back();
    steps_.push_back(step);
    return static_cast<StepPlace>(steps_.size() - 1);
  }

  /// What is preferred, and else `other`; the other way round where that is lazy.
  StepPlace Choose(StepPlace preferred, StepPlace other, bool isLazy) {
    return Add({.kind = Kind::kChoice, .next = isLazy ? other : preferred, .other = isLazy ? preferred : other});
  }

  StepPlace Emit(std::uint16_t place, StepPlace behind) {
    const SyntaxNode& node = tree_[place];
    switch (node.kind) {
      case SyntaxNode::Kind::kUnit:
        return Add({.kind = Kind::kUnit, .next = behind, .atom = node.atom});
      case SyntaxNode::Kind::kAssertion:
        return Add({.kind = Kind::kAssertion, .assertion = node.assertion, .next = behind});
      case SyntaxNode::Kind::kSequence:
        return EmitSequence(node, behind);
      case SyntaxNode::Kind::kChoice:
        return EmitChoice(node, behind);
      case SyntaxNode::Kind::kRepeat:
        return EmitRepeat(node, behind);
    }
    return behind;
  }

  StepPlace EmitSequence(const SyntaxNode& node, StepPlace behind) {
    const bool isForward = direction_ == Direction::kForward;
    for (std::uint16_t part = isForward ? node.last : node.first; part != SyntaxNode::kNone;
         part = isForward ? tree_[part].previous : tree_[part].next)
      behind = Emit(part, behind);
    return behind;
  }

  StepPlace EmitChoice(const SyntaxNode& node, StepPlace behind) {
    StepPlace choice = Emit(node.last, behind);
    for (std::uint16_t part = tree_[node.last].previous; part != SyntaxNode::kNone; part = tree_[part].previous)
      choice = Choose(Emit(part, behind), choice, false);
    return choice;
  }

  StepPlace EmitRepeat(const SyntaxNode& node, StepPlace behind) {
    StepPlace begin = behind;
    if (node.most == SyntaxNode::kEndless) {
      const StepPlace loop = Choose(0, behind, node.isLazy);
      begin = Emit(node.first, loop);
      (node.isLazy ? steps_[loop].other : steps_[loop].next) = begin;
      if (node.least == 0) begin = loop;
    } else {
      for (int count = node.least; count < node.most && !IsFull(); ++count)
        begin = Choose(Emit(node.first, begin), behind, node.isLazy);
    }
    const int required = node.least - (node.most == SyntaxNode::kEndless && node.least != 0 ? 1 : 0);
    for (int count = 0; count < required && !IsFull(); ++count) begin = Emit(node.first, begin);
    return begin;
  }

  bool IsFull() const { return steps_.size() == kMostSteps; }

  const SyntaxTree& tree_;
  Direction direction_;
  std::vector<ProgramStep> steps_;
};

}  // namespace

Program MakeProgram(const SyntaxTree& tree, Direction direction) { return Writer(tree, direction).Write(); }

}  // namespace quillmere::text
