#include "text/regex/linear/syntax_tree.h"

namespace quillmere::text {
namespace {

using NodeKind = SyntaxNode::Kind;

bool IsOneOf(XCHAR unit, XStringView units) { return units.find(unit) != XStringView::npos; }

/// Escapes for one unit of a class, or for the one unit that they name.
bool IsUnitEscape(XCHAR unit) { return IsOneOf(unit, XTEXT("dDwWsSlLuUhHvVtnrfae.^$|()[]{}*+?\\-/\"#%&,:;=@!~ ")); }

/// Reads an expression from its beginning to its end. Nothing more is read once something was not recognised.
class Reader {
 public:
  Reader(XStringView expression, UnitClasses& classes) : rest_(expression), classes_(classes) {}

  std::optional<SyntaxTree> Read() {
    if (rest_.size() > kMostUnits) return std::nullopt;
    const std::uint16_t root = ReadChoice();
    if (!isRead_ || !rest_.empty()) return std::nullopt;
    // A root of its own, which is the last node in any case.
    Append(Add({NodeKind::kSequence, tree_[root].mayBeEmpty}), root);
    return std::move(tree_);
  }

 private:
  static constexpr std::size_t kMostUnits = 1'000;
  static constexpr int kDeepest = 50;  ///< groups in groups

  std::uint16_t Add(const SyntaxNode& node) {
    tree_.push_back(node);
    return static_cast<std::uint16_t>(tree_.size() - 1);
  }
  void Append(std::uint16_t to, std::uint16_t part) {
    SyntaxNode& whole = tree_[to];
    tree_[part].previous = whole.last;
    (whole.last == SyntaxNode::kNone ? whole.first : tree_[whole.last].next) = part;
    whole.last = part;
  }
  std::uint16_t Fail() {
    isRead_ = false;
    return Add({NodeKind::kSequence, true});
  }

  bool StartsWith(XCHAR unit) const { return !rest_.empty() && rest_.front() == unit; }
  bool Skip(XStringView start) {
    if (!rest_.starts_with(start)) return false;
    rest_.remove_prefix(start.size());
    return true;
  }

  std::uint16_t ReadChoice() {
    const std::uint16_t first = ReadSequence();
    if (!StartsWith(XTEXT('|'))) return first;
    const std::uint16_t choice = Add({NodeKind::kChoice, tree_[first].mayBeEmpty});
    Append(choice, first);
    while (isRead_ && Skip(XTEXT("|"))) {
      const std::uint16_t other = ReadSequence();
      Append(choice, other);
      tree_[choice].mayBeEmpty |= tree_[other].mayBeEmpty;
    }
    return choice;
  }

  std::uint16_t ReadSequence() {
    const std::uint16_t sequence = Add({NodeKind::kSequence, true});
    while (isRead_ && !rest_.empty() && rest_.front() != XTEXT('|') && rest_.front() != XTEXT(')')) {
      const std::uint16_t part = ReadRepeat(ReadItem());
      Append(sequence, part);
      tree_[sequence].mayBeEmpty &= tree_[part].mayBeEmpty;
    }
    return sequence;
  }

  std::uint16_t ReadItem() {
    if (Skip(XTEXT("(?:"))) return ReadGroup();
    if (rest_.starts_with(XTEXT("(?")) || rest_.starts_with(XTEXT("(*"))) return Fail();
    if (Skip(XTEXT("("))) return ReadGroup();
    if (Skip(XTEXT("."))) return Unit(kAnyUnitRow);
    if (Skip(XTEXT("^"))) return Place(Assertion::kLineBegin);
    if (Skip(XTEXT("$"))) return Place(Assertion::kLineEnd);
    if (StartsWith(XTEXT('['))) return ReadSet();
    if (StartsWith(XTEXT('\\'))) return ReadEscape();
    const XCHAR unit = rest_.front();
    if (unit == 0 || IsOneOf(unit, XTEXT("*+?{}]"))) return Fail();
    rest_.remove_prefix(1);
    return Unit(classes_.Literal(unit));
  }

  std::uint16_t Unit(UnitRow atom) {
    if (atom == 0) return Fail();
    SyntaxNode node{NodeKind::kUnit, false};
    node.atom = atom;
    return Add(node);
  }

  std::uint16_t Place(Assertion assertion) {
    if (assertion == Assertion::kLineBegin)
      classes_.Ask(kLineSeparator | kReturn | kFeed | kTextBegin);
    else if (assertion == Assertion::kLineEnd)
      classes_.Ask(kLineSeparator | kReturn | kFeed | kTextEnd);
    else if (assertion == Assertion::kBeginOfText)
      classes_.Ask(kTextBegin);
    else
      classes_.Ask(assertion == Assertion::kEndOfText ? kTextEnd : kWordUnit);
    SyntaxNode node{NodeKind::kAssertion, true};
    node.assertion = assertion;
    return Add(node);
  }

  std::uint16_t ReadGroup() {
    if (++depth_ > kDeepest) return Fail();
    const std::uint16_t group = ReadChoice();
    --depth_;
    return Skip(XTEXT(")")) ? group : Fail();
  }

  std::uint16_t ReadEscape() {
    if (Skip(XTEXT("\\b"))) return Place(Assertion::kWordEdge);
    if (Skip(XTEXT("\\B"))) return Place(Assertion::kNoWordEdge);
    if (Skip(XTEXT("\\A"))) return Place(Assertion::kBeginOfText);
    if (Skip(XTEXT("\\z"))) return Place(Assertion::kEndOfText);
    if (rest_.size() < 2 || !IsUnitEscape(rest_[1])) return Fail();
    return TakeAtom(2);
  }

  std::uint16_t TakeAtom(std::size_t units) {
    const XStringView atom = rest_.substr(0, units);
    rest_.remove_prefix(units);
    return Unit(classes_.Compiled(atom));
  }

  /// Finds the end of a set. Those that can match two units at once are not recognised.
  std::uint16_t ReadSet() {
    std::size_t at = rest_.substr(1, 1) == XTEXT("^") ? 2 : 1;
    for (const std::size_t begin = at; at < rest_.size(); ++at) {
      const XCHAR unit = rest_[at];
      const XCHAR next = at + 1 < rest_.size() ? rest_[at + 1] : XCHAR{};
      if (unit == XTEXT(']')) return at == begin ? Fail() : TakeAtom(at + 1);
      if (unit == 0) return Fail();
      if (unit == XTEXT('\\')) {
        if (!IsUnitEscape(next)) return Fail();
        ++at;
      } else if (unit == XTEXT('[')) {
        if (next != XTEXT(':')) return Fail();
        at += 2;
        while (at < rest_.size() && (IsLetter(rest_[at]))) ++at;
        if (rest_.substr(at, 2) != XTEXT(":]")) return Fail();
        ++at;
      }
    }
    return Fail();
  }
  static bool IsLetter(XCHAR unit) {
    return (unit >= XTEXT('a') && unit <= XTEXT('z')) || (unit >= XTEXT('A') && unit <= XTEXT('Z'));
  }

  /// Reads what follows an item.
  std::uint16_t ReadRepeat(std::uint16_t item) {
    SyntaxNode node{NodeKind::kRepeat, false};
    if (Skip(XTEXT("*")))
      node.most = SyntaxNode::kEndless;
    else if (Skip(XTEXT("+")))
      node.least = 1, node.most = SyntaxNode::kEndless;
    else if (Skip(XTEXT("?")))
      node.most = 1;
    else if (!Skip(XTEXT("{")))
      return item;
    else if (!ReadBounds(node))
      return Fail();
    node.isLazy = Skip(XTEXT("?"));
    node.mayBeEmpty = node.least == 0;
    const bool isRepeatedAgain = !rest_.empty() && IsOneOf(rest_.front(), XTEXT("*+?{"));
    // Behind a search that begins with one the library goes on too far on, where its bound would have ended it.
    const bool isLazyWithBound = node.isLazy && node.most > 1 && node.most != SyntaxNode::kEndless;
    if (tree_[item].mayBeEmpty || isRepeatedAgain || isLazyWithBound) return Fail();
    const std::uint16_t repeat = Add(node);
    Append(repeat, item);
    return repeat;
  }

  /// Reads {n}, {n,} and {n,m} from behind the brace.
  bool ReadBounds(SyntaxNode& node) {
    const auto least = ReadNumber();
    if (!least) return false;
    node.least = node.most = *least;
    if (Skip(XTEXT(","))) {
      const auto most = ReadNumber();
      node.most = most.value_or(SyntaxNode::kEndless);
    }
    return Skip(XTEXT("}")) && node.most != 0 && node.least <= node.most;
  }

  std::optional<std::uint16_t> ReadNumber() {
    constexpr std::size_t kMostDigits = 3;
    std::size_t digits = 0;
    std::uint16_t number = 0;
    while (!rest_.empty() && rest_.front() >= XTEXT('0') && rest_.front() <= XTEXT('9')) {
      if (++digits > kMostDigits) return std::nullopt;
      number = static_cast<std::uint16_t>(number * 10 + (rest_.front() - XTEXT('0')));
      rest_.remove_prefix(1);
    }
    return digits == 0 ? std::nullopt : std::optional(number);
  }

  XStringView rest_;
  UnitClasses& classes_;
  SyntaxTree tree_;
  bool isRead_ = true;
  int depth_ = 0;
};

}  // namespace

std::optional<SyntaxTree> ReadSyntaxTree(XStringView expression, UnitClasses& classes) {
  return Reader(expression, classes).Read();
}

}  // namespace quillmere::text
