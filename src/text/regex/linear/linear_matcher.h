// Matching without going back, for expressions that allow it.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>

#include "text/regex/linear/automaton.h"
#include "text/regex/linear/program.h"
#include "text/regex/linear/syntax_tree.h"
#include "text/regex/linear/unit_classes.h"
#include "text/regex/regex_steps.h"
#include "xlcall/xchar.h"

namespace quillmere::text {

/// Matches texts against an expression that is regular in the strict sense, in a time that grows with the text alone,
/// whatever the expression is. All answers are those of the library. One thread uses it; what it learns of texts it
/// keeps.
class LinearMatcher {
 public:
  /// A matcher of an expression, compiled as `expression`, which must outlive it; none where the spelling holds what
  /// only the library can match.
  static std::unique_ptr<LinearMatcher> Make(XStringView spelling, const LibraryRegex& expression);

  /// Whether texts and expression are such that the library is the better choice from now on: its budget ends at least
  /// what takes too long.
  bool IsWornOut() const noexcept;

  /// Whether the expression is found anywhere in a text.
  Automaton& Search();
  /// Whether it matches the whole of a text.
  Automaton& Whole();

  /// A match from its first unit to behind its last.
  struct Found {
    std::size_t begin;
    std::size_t end;
  };
  /// The leftmost match that begins at `from` or behind, of those there the one that Perl's rules prefer. With
  /// `needsUnits` an empty match at `from` is none. Each unit that is looked at is counted.
  std::optional<Found> Find(XStringView text, std::size_t from, bool needsUnits, RegexSteps& steps);

 private:
  explicit LinearMatcher(const LibraryRegex& expression) : classes_(expression) {}

  std::optional<std::size_t> EndOfFirst(XStringView text, std::size_t from, bool needsUnits, RegexSteps& steps);
  std::size_t BeginOfLongest(XStringView text, std::size_t from, std::size_t end, RegexSteps& steps);

  UnitClasses classes_;
  SyntaxTree tree_;
  Program forward_;
  Program backward_;  ///< made when it is first needed
  std::optional<Automaton> search_;
  std::optional<Automaton> whole_;
  std::optional<Automaton> first_;
  std::optional<Automaton> longest_;
};

}  // namespace quillmere::text
