#include "text/regex/linear/automaton.h"

#include <algorithm>
#include <bit>

namespace quillmere::text {
namespace {

using Kind = ProgramStep::Kind;

}  // namespace

void Automaton::Places::Clear() {
  list.clear();
  hasAssertion = hasMatch = false;
  ++round;
}

/// Whether it is met for the first time.
bool Automaton::Places::Meet(StepPlace place) {
  if (met[place] == round) return false;
  met[place] = round;
  return true;
}

Automaton::Automaton(const Program& program, UnitClasses& classes, Question question, Direction direction)
    : program_(program), classes_(classes), question_(question), direction_(direction) {
  next_.met.resize(program.steps.size());
  decided_.met.resize(program.steps.size());
  begins_.resize(2 * kNeedsUnits);
  constexpr std::size_t kLeastStride = 16;
  Clear(std::max(kLeastStride, std::bit_ceil(classes.Count())));
}

/// Gives up all states.
void Automaton::Clear(std::size_t stride) {
  ++round_;
  stride_ = stride;
  foundState_ = static_cast<Way>(2 * stride);
  firstState_ = static_cast<Way>(kSinks * stride);
  states_.clear();
  places_.clear();
  table_.assign(kSinks * stride, kUnknown);
  for (std::size_t sink = 1; sink < kSinks; ++sink)
    std::fill_n(table_.begin() + static_cast<std::ptrdiff_t>(sink * stride), stride, static_cast<Way>(sink * stride));
  std::ranges::fill(begins_, kUnknown);
}

Automaton::Way Automaton::Begin(ClassNumber before, bool needsUnits) {
  if (classes_.Count() > stride_) Clear(std::bit_ceil(classes_.Count()));
  const UnitRow asked = classes_.AskedOf(before) | (needsUnits ? kNeedsUnits : 0);
  if (begins_[asked] == kUnknown) {
    const bool isSearch = question_ == Question::kIsFound || question_ == Question::kFirst;
    next_.Clear();
    Collect(isSearch ? program_.searchBegin : program_.matchBegin);
    begins_[asked] = StateOfCollected(asked);
  }
  return begins_[asked];
}

/// Makes room for a class that was found since the states were made.
void Automaton::WidenFor(ClassNumber unitClass, Way& state) {
  if (unitClass < stride_) return;
  const State kept = states_[state / stride_ - kSinks];
  next_.Clear();
  const auto first = places_.begin() + kept.firstPlace;
  next_.list.assign(first, first + kept.placeCount);
  next_.hasAssertion = true;  // keeps what is before
  Clear(std::bit_ceil(classes_.Count()));
  state = StateOfCollected(kept.before);
}

bool Automaton::Answer(XStringView text) {
  Way state = Begin(kBeginClass);
  const Way* table = table_.data();
  for (const XCHAR unit : text) {
    Way next = table[state + classes_.Known(unit)];
    if (IsOver(next)) [[unlikely]] {
      if (next == kUnknown) next = Find(state, classes_.Of(unit));
      if (IsOver(next)) return next == foundState_;
      table = table_.data();
    }
    state = next;
  }
  return NextByClass(state, kEndClass) == foundState_;
}

void Automaton::Answer(const XStringView* texts, std::size_t count, bool* answers) {
  std::size_t at = 0;
  for (; at + kTextsSideBySide <= count; at += kTextsSideBySide) AnswerSideBySide(texts + at, answers + at);
  for (; at < count; ++at) answers[at] = Answer(texts[at]);
}

void Automaton::AnswerSideBySide(const XStringView* texts, bool* answers) {
  static_assert(kTextsSideBySide == 4);
  Way a = Begin(kBeginClass);
  Way b = a, c = a, d = a;
  const Way* const table = table_.data();
  const UnitClasses& classes = classes_;
  const std::size_t common = std::min({texts[0].size(), texts[1].size(), texts[2].size(), texts[3].size()});
  const XCHAR* const ofA = texts[0].data();
  const XCHAR* const ofB = texts[1].data();
  const XCHAR* const ofC = texts[2].data();
  const XCHAR* const ofD = texts[3].data();
  // What is not known yet leads nowhere, like what is over.
  constexpr std::size_t kUnitsBetweenLooks = 16;
  for (std::size_t at = 0; at < common && !IsOver(std::max({a, b, c, d}));) {
    for (const std::size_t end = std::min(common, at + kUnitsBetweenLooks); at < end; ++at) {
      a = table[a + classes.Known(ofA[at])];
      b = table[b + classes.Known(ofB[at])];
      c = table[c + classes.Known(ofC[at])];
      d = table[d + classes.Known(ofD[at])];
    }
  }
  Way states[] = {a, b, c, d};
  for (std::size_t text = 0; text < kTextsSideBySide; ++text) {
    Way& state = states[text];
    for (std::size_t at = common; at < texts[text].size() && !IsOver(state); ++at)
      state = table[state + classes.Known(texts[text][at])];
    state = table[state + kEndClass];
  }
  // Only now anything new is learnt: all states may be given up with that.
  for (std::size_t text = 0; text < kTextsSideBySide; ++text)
    answers[text] = states[text] == kUnknown ? Answer(texts[text]) : states[text] == foundState_;
}

Automaton::Way Automaton::Find(Way state, ClassNumber unitClass) {
  WidenFor(unitClass, state);
  if (const Way known = table_[state + unitClass]; known != kUnknown) return known;
  next_.Clear();
  const bool isMatched = Decide(states_[state / stride_ - kSinks], classes_.RowOf(unitClass));
  const std::size_t round = round_;
  Way way = 0;
  if (question_ == Question::kIsFound && isMatched)
    way = foundState_;
  else if (question_ == Question::kIsWhole && unitClass == kEndClass)
    way = isMatched ? foundState_ : static_cast<Way>(stride_);
  else
    way = StateOfCollected(classes_.AskedOf(unitClass));
  if (isMatched && (question_ == Question::kFirst || question_ == Question::kLongest)) way |= kMatched;
  if (round == round_) table_[state + unitClass] = way;
  return way;
}

/// Goes on from the places of a state, now that the unit behind them is known, or the edge, and collects the places
/// behind that. Returns whether one of them was a match.
bool Automaton::Decide(const State& state, UnitRow after) {
  decided_.Clear();
  for (std::uint32_t at = 0; at < state.placeCount; ++at) {
    stack_.push_back(places_[state.firstPlace + at]);
    while (!stack_.empty()) {
      const StepPlace place = stack_.back();
      stack_.pop_back();
      if (!decided_.Meet(place)) continue;
      const ProgramStep& step = program_.steps[place];
      switch (step.kind) {
        case Kind::kUnit:
          if ((step.atom & after) != 0) Collect(step.next);
          break;
        case Kind::kChoice:
          stack_.push_back(step.other);
          stack_.push_back(step.next);
          break;
        case Kind::kAssertion:
          if (Holds(step.assertion, state.before, after)) stack_.push_back(step.next);
          break;
        case Kind::kMatch:
          if ((state.before & kNeedsUnits) != 0) break;
          if (question_ == Question::kFirst) {
            // What is less preferred is of no interest any more.
            stack_.clear();
            return true;
          }
          decided_.hasMatch = true;
          break;
      }
    }
  }
  return decided_.hasMatch;
}

bool Automaton::Holds(Assertion assertion, UnitRow before, UnitRow after) const {
  if (direction_ == Direction::kBackward) std::swap(before, after);
  const bool isWithinLineEnd = (before & kReturn) != 0 && (after & kFeed) != 0;
  switch (assertion) {
    case Assertion::kLineBegin:
      return (before & kTextBegin) != 0 || ((before & kLineSeparator) != 0 && !isWithinLineEnd);
    case Assertion::kLineEnd:
      return (after & kTextEnd) != 0 || ((after & kLineSeparator) != 0 && !isWithinLineEnd);
    case Assertion::kWordEdge:
      return ((before ^ after) & kWordUnit) != 0;
    case Assertion::kNoWordEdge:
      return ((before ^ after) & kWordUnit) == 0;
    case Assertion::kBeginOfText:
      return (before & kTextBegin) != 0;
    case Assertion::kEndOfText:
      return (after & kTextEnd) != 0;
  }
  return false;
}

/// Collects a place, or those that its choices lead to.
void Automaton::Collect(StepPlace first) {
  const std::size_t bottom = stack_.size();
  stack_.push_back(first);
  while (stack_.size() != bottom) {
    const StepPlace place = stack_.back();
    stack_.pop_back();
    if (!next_.Meet(place)) continue;
    const ProgramStep& step = program_.steps[place];
    if (step.kind == Kind::kChoice) {
      stack_.push_back(step.other);
      stack_.push_back(step.next);
      continue;
    }
    next_.list.push_back(place);
    next_.hasAssertion = next_.hasAssertion || step.kind == Kind::kAssertion;
    next_.hasMatch = next_.hasMatch || step.kind == Kind::kMatch;
  }
}

/// The state of the places collected.
Automaton::Way Automaton::StateOfCollected(UnitRow before) {
  if (next_.list.empty()) return static_cast<Way>(stride_);
  if (question_ == Question::kIsFound && next_.hasMatch) return foundState_;
  if (question_ != Question::kFirst) std::ranges::sort(next_.list);
  if (!next_.hasAssertion) before &= kNeedsUnits;
  std::uint32_t hash = static_cast<std::uint32_t>(before);
  for (const StepPlace place : next_.list) hash = (hash ^ place) * 0x9E3779B1U;
  for (std::size_t at = 0; at < states_.size(); ++at)
    if (IsSame(states_[at], hash, before)) return static_cast<Way>((at + kSinks) * stride_);

  const bool hasRoom = states_.size() < kMostStates && table_.size() < kMostWays && places_.size() < kMostPlaces;
  if (!hasRoom && !states_.empty()) Clear(stride_);
  const auto way = static_cast<Way>(table_.size());
  table_.resize(table_.size() + stride_);
  states_.push_back(
      {hash, static_cast<std::uint32_t>(places_.size()), static_cast<std::uint32_t>(next_.list.size()), before});
  places_.insert(places_.end(), next_.list.begin(), next_.list.end());
  return way;
}

bool Automaton::IsSame(const State& state, std::uint32_t hash, UnitRow before) const {
  return state.hash == hash && state.before == before && state.placeCount == next_.list.size() &&
         std::equal(next_.list.begin(), next_.list.end(), places_.begin() + state.firstPlace);
}

}  // namespace quillmere::text
