// A program made deterministic, step by step as texts ask for it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "text/regex/linear/program.h"
#include "text/regex/linear/unit_classes.h"

namespace quillmere::text {

/// What is asked of a text.
enum class Question {
  kIsFound,  ///< whether there is a match anywhere
  kIsWhole,  ///< whether all of it matches
  kFirst,    ///< where the leftmost match ends that Perl's rules prefer
  kLongest,  ///< where the longest match ends that begins here
};

/// Walks through texts unit by unit. Its states are the places of the program that are reached at once, the preferred
/// ones first where a question asks for that; each state and each way from one to the next is worked out when it is
/// first met, and kept. Assertions are decided when the unit behind their place is known, so that they stay in a state
/// together with what they ask of the unit before. One thread uses it.
class Automaton {
 public:
  /// The program, in the direction of the walk, and the classes must outlive it.
  Automaton(const Program& program, UnitClasses& classes, Question question, Direction direction);

  /// A state, as the place of its ways in a table, and with it whether there is a match before the unit that led there.
  using Way = std::uint32_t;
  static constexpr Way kMatched = 1;
  static bool IsMatched(Way way) noexcept { return (way & kMatched) != 0; }
  static Way StateOf(Way way) noexcept { return way & ~kMatched; }

  /// Whether nothing more can change: there is no match, or none further on.
  bool IsOver(Way state) const noexcept { return state < firstState_; }

  /// Whether states were given up so often that keeping them is of no use: most units then lead to a new one, which
  /// takes as long as the program is.
  bool IsWornOut() const noexcept { return round_ > kMostRounds; }

  /// The answer to kIsFound or kIsWhole for a text.
  bool Answer(XStringView text);
  /// The answers for many texts, several of them walked through side by side, so that one waits for memory while the
  /// others go on.
  void Answer(const XStringView* texts, std::size_t count, bool* answers);

  /// The state where a walk begins, behind what is of a class. With `needsUnits` a match is none if it has no unit.
  Way Begin(ClassNumber before, bool needsUnits = false);

  /// The way from a state by a unit, or by an edge of the text. Other states than the one returned are gone.
  Way Next(Way state, XCHAR unit) {
    const Way way = table_[state + classes_.Known(unit)];
    if (way == kUnknown) [[unlikely]]
      return Find(state, classes_.Of(unit));
    return way;
  }
  Way NextByClass(Way state, ClassNumber unitClass) {
    const Way way = table_[state + unitClass];
    return way == kUnknown ? Find(state, unitClass) : way;
  }

 private:
  static constexpr std::size_t kTextsSideBySide = 4;
  static constexpr Way kUnknown = 0;
  static constexpr std::size_t kMostRounds = 200;
  static constexpr std::size_t kMostStates = 500;
  static constexpr std::size_t kMostWays = 1 << 15;
  static constexpr std::size_t kMostPlaces = 1 << 13;
  static constexpr std::size_t kSinks = 3;  ///< states from which no way leads: unknown, dead, found

  struct State {
    std::uint32_t hash;
    std::uint32_t firstPlace;
    std::uint32_t placeCount;
    UnitRow before;  ///< what assertions ask of the unit before, and kNeedsUnits
  };
  /// A bit beyond those of assertions.
  static constexpr UnitRow kNeedsUnits = kAnyUnitRow;

  /// Places that are being collected, each once.
  struct Places {
    std::vector<StepPlace> list;
    std::vector<std::uint32_t> met;  ///< for each of the program when it was met last
    std::uint32_t round = 0;
    bool hasAssertion = false;
    bool hasMatch = false;

    void Clear();
    bool Meet(StepPlace place);
  };

  void Clear(std::size_t stride);
  void WidenFor(ClassNumber unitClass, Way& state);
  Way Find(Way state, ClassNumber unitClass);
  void AnswerSideBySide(const XStringView* texts, bool* answers);
  bool Decide(const State& state, UnitRow after);
  bool Holds(Assertion assertion, UnitRow before, UnitRow after) const;
  void Collect(StepPlace place);
  Way StateOfCollected(UnitRow before);
  bool IsSame(const State& state, std::uint32_t hash, UnitRow before) const;

  const Program& program_;
  UnitClasses& classes_;
  Question question_;
  Direction direction_;
  std::size_t stride_ = 0;  ///< ways of a state, even
  Way firstState_ = 0;
  Way foundState_ = 0;
  std::size_t round_ = 0;  ///< how often all states were given up
  std::vector<State> states_;
  std::vector<StepPlace> places_;  ///< of all states
  std::vector<Way> table_;
  std::vector<Way> begins_;  ///< by what is before, kUnknown where not known
  Places next_;              ///< of the state that is being made
  Places decided_;           ///< of the one it is made from
  std::vector<StepPlace> stack_;
};

}  // namespace quillmere::text
