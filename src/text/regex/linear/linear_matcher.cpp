#include "text/regex/linear/linear_matcher.h"

namespace quillmere::text {
namespace {

/// An automaton, made when it is first asked.
Automaton& MadeOnce(std::optional<Automaton>& automaton, const Program& program, UnitClasses& classes,
                    Question question, Direction direction) {
  return automaton ? *automaton : automaton.emplace(program, classes, question, direction);
}

}  // namespace

std::unique_ptr<LinearMatcher> LinearMatcher::Make(XStringView spelling, const LibraryRegex& expression) {
  std::unique_ptr<LinearMatcher> made(new LinearMatcher(expression));
  auto tree = ReadSyntaxTree(spelling, made->classes_);
  if (!tree) return nullptr;
  made->tree_ = std::move(*tree);
  made->forward_ = MakeProgram(made->tree_, Direction::kForward);
  return made->forward_.steps.empty() ? nullptr : std::move(made);
}

bool LinearMatcher::IsWornOut() const noexcept {
  const auto isWornOut = [](const std::optional<Automaton>& automaton) { return automaton && automaton->IsWornOut(); };
  return isWornOut(search_) || isWornOut(whole_) || isWornOut(first_) || isWornOut(longest_);
}

Automaton& LinearMatcher::Search() {
  return MadeOnce(search_, forward_, classes_, Question::kIsFound, Direction::kForward);
}

Automaton& LinearMatcher::Whole() {
  return MadeOnce(whole_, forward_, classes_, Question::kIsWhole, Direction::kForward);
}

std::optional<LinearMatcher::Found> LinearMatcher::Find(XStringView text, std::size_t from, bool needsUnits,
                                                        RegexSteps& steps) {
  const auto end = EndOfFirst(text, from, needsUnits, steps);
  if (!end) return std::nullopt;
  return Found{BeginOfLongest(text, from, *end, steps), *end};
}

/// Where the match ends that is to be found.
std::optional<std::size_t> LinearMatcher::EndOfFirst(XStringView text, std::size_t from, bool needsUnits,
                                                     RegexSteps& steps) {
  Automaton& automaton = MadeOnce(first_, forward_, classes_, Question::kFirst, Direction::kForward);
  const ClassNumber before = from == 0 ? kBeginClass : classes_.Of(text[from - 1]);
  std::optional<std::size_t> end;
  Automaton::Way state = automaton.Begin(before, needsUnits);
  for (std::size_t at = from; !automaton.IsOver(state); ++at) {
    steps.Count();
    const bool isAtEnd = at == text.size();
    const Automaton::Way way = isAtEnd ? automaton.NextByClass(state, kEndClass) : automaton.Next(state, text[at]);
    if (Automaton::IsMatched(way)) end = at;
    if (isAtEnd) break;
    state = Automaton::StateOf(way);
  }
  return end;
}

/// Where it begins. No match begins further left, so that it is the longest of those that end there.
std::size_t LinearMatcher::BeginOfLongest(XStringView text, std::size_t from, std::size_t end, RegexSteps& steps) {
  if (backward_.steps.empty()) backward_ = MakeProgram(tree_, Direction::kBackward);
  Automaton& automaton = MadeOnce(longest_, backward_, classes_, Question::kLongest, Direction::kBackward);
  std::size_t begin = end;
  Automaton::Way state = automaton.Begin(end == text.size() ? kEndClass : classes_.Of(text[end]));
  for (std::size_t at = end; !automaton.IsOver(state); --at) {
    steps.Count();
    const Automaton::Way way =
        at == 0 ? automaton.NextByClass(state, kBeginClass) : automaton.Next(state, text[at - 1]);
    if (Automaton::IsMatched(way)) begin = at;
    if (at == from) break;
    state = Automaton::StateOf(way);
  }
  return begin;
}

}  // namespace quillmere::text
