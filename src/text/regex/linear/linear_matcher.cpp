#include "text/regex/linear/linear_matcher.h"

#include "text/regex/linear/syntax_tree.h"

namespace quillmere::text {
namespace {

/// Walks through a text from edge to edge, or until nothing more can change. Returns whether there was a match.
bool Answer(Automaton& automaton, XStringView text) {
  Automaton::Way state = automaton.Begin(kBeginClass);
  for (const XCHAR unit : text) {
    if (automaton.IsOver(state)) return automaton.IsFound(state);
    state = Automaton::StateOf(automaton.Next(state, unit));
  }
  return automaton.IsFound(automaton.NextByClass(state, kEndClass));
}

/// An automaton, made when it is first asked.
Automaton& MadeOnce(std::optional<Automaton>& automaton, const Program& program, UnitClasses& classes,
                    Question question, Direction direction) {
  return automaton ? *automaton : automaton.emplace(program, classes, question, direction);
}

}  // namespace

std::unique_ptr<LinearMatcher> LinearMatcher::Make(XStringView spelling, const LibraryRegex& expression) {
  std::unique_ptr<LinearMatcher> made(new LinearMatcher(expression));
  const auto tree = ReadSyntaxTree(spelling, made->classes_);
  if (!tree) return nullptr;
  made->forward_ = MakeProgram(*tree, Direction::kForward);
  return made->forward_.steps.empty() ? nullptr : std::move(made);
}

bool LinearMatcher::IsFoundIn(XStringView text) {
  return Answer(MadeOnce(search_, forward_, classes_, Question::kIsFound, Direction::kForward), text);
}

bool LinearMatcher::IsWholeOf(XStringView text) {
  return Answer(MadeOnce(whole_, forward_, classes_, Question::kIsWhole, Direction::kForward), text);
}

}  // namespace quillmere::text
