// Regular expressions: what they find, the same on every system, and that none takes for ever.
#include "text/regex/regex_pattern.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <vector>

#include "tests/unit/fixtures/raised_message.h"

namespace quillmere::testing {

using namespace text;
namespace {

/// In a block of its own, so that a sanitizer sees a read outside.
bool Finds(const RegexPattern& pattern, XStringView text) {
  const std::unique_ptr<XCHAR[]> units(new XCHAR[text.size()]);
  std::copy(text.begin(), text.end(), units.get());
  return pattern.Matches({units.get(), text.size()});
}

struct Search {
  XStringView expression;
  std::vector<XStringView> found;
  std::vector<XStringView> missed;
};

TEST(RegexPattern, FindsTheSameOnEverySystem) {
  const Search searches[] = {
      {XTEXT("an"), {XTEXT("Banana"), XTEXT("xANx")}, {XTEXT("a n"), XTEXT("")}},
      {XTEXT(""), {XTEXT(""), XTEXT("x")}, {}},
      // Letters of every alphabet in any case; as ranges, too.
      {XTEXT("^\u00E4\u0416\u03C9$"), {XTEXT("\u00C4\u0436\u03A9")}, {XTEXT("\u00C4\u0436\u03A9\u0301")}},
      {XTEXT("^[\u0430-\u044F]+$"), {XTEXT("\u0416\u0436")}, {XTEXT("\u0416z")}},
      {XTEXT("^k$"), {XTEXT("K")}, {XTEXT("\u212A\u0301")}},
      {XTEXT("(?-i)a\u00C4"), {XTEXT("a\u00C4")}, {XTEXT("A\u00C4"), XTEXT("a\u00E4")}},
      // Classes are Windows' own.
      {XTEXT("^\\w+$"), {XTEXT("a_1\u00DF\u05D0\u0663\u00B2")}, {XTEXT("\u0301"), XTEXT("a b"), XTEXT("\U0001F600")}},
      {XTEXT("^\\d+$"), {XTEXT("09\u0663\u00B3")}, {XTEXT("\u2460"), XTEXT("\u00BC")}},
      {XTEXT("^\\s+$"), {XTEXT(" \t\n\u00A0\u0085\u2028\u3000")}, {XTEXT("\u200B"), XTEXT("\u180E")}},
      {XTEXT("^[[:punct:]]+$"), {XTEXT(".-+$\u00B5\u00AA\u00A9")}, {XTEXT("\u221A"), XTEXT("\u20AC")}},
      {XTEXT("^[[:xdigit:]]+$"), {XTEXT("09afAF\uFF21")}, {XTEXT("g")}},
      {XTEXT("^[[:UPPER:]]$"), {XTEXT("\u01C5")}, {XTEXT("1")}},
      {XTEXT("^[[:blank:]]\\h[[:cntrl:]]$"), {XTEXT("\t\u2003\u00AD")}, {XTEXT("\n\u2003\u00AD"), XTEXT("\t\v\u00AD")}},
      {XTEXT("^\\v[[:unicode:]]\\l$"), {XTEXT("\v\u0100\u207F")}, {XTEXT(" \u0100x"), XTEXT("\v\u00FFx")}},
      {XTEXT("^[[=a=]]$"), {XTEXT("a"), XTEXT("\u00E1"), XTEXT("\u00C4")}, {XTEXT("b"), XTEXT("\u00E6")}},
      {XTEXT("^[[.hyphen.]\\N{comma}]$"), {XTEXT("-"), XTEXT(",")}, {XTEXT("h")}},
      // Anchors know lines, and . takes their ends.
      {XTEXT("^b$"), {XTEXT("a\nb"), XTEXT("b\r\nc"), XTEXT("a\u2028b")}, {XTEXT("ab")}},
      {XTEXT("\\Ab\\z"), {XTEXT("b")}, {XTEXT("a\nb"), XTEXT("b\n")}},
      {XTEXT("a.b"), {XTEXT("a\nb")}, {XTEXT("ab")}},
      {XTEXT("\\b\u00E9t\\b"), {XTEXT("l'\u00E9t "), XTEXT("\u00C9T")}, {XTEXT("\u00E9t\u00E9")}},
      // A unit is a character, also half of one.
      {XTEXT("^..$"), {XTEXT("\U0001F600")}, {XTEXT("a")}},
      {XTEXT("\\x{E4}\\x41"), {XTEXT("\u00C4a")}, {XTEXT("E4")}},
      {XTEXT("^(a+)(?<x>b)\\1\\k<x>$"), {XTEXT("aabAAB")}, {XTEXT("aabab")}},
      {XTEXT("(?<=\u00E4|b)c(?!d)"), {XTEXT("\u00C4c")}, {XTEXT("ac"), XTEXT("bcd")}},
      {XTEXT("^(\\((?:[^()]|(?1))*\\))$"), {XTEXT("(a(b)())")}, {XTEXT("(a(b)")}},
      {XTEXT("(?x) a b # |c\n d"), {XTEXT("abd")}, {XTEXT("a b d"), XTEXT("c")}},
      {XTEXT("(?:x*)*$"), {XTEXT("aaa")}, {}},
      {XTEXT("\\Qa.(b\\E."), {XTEXT("A.(bc")}, {XTEXT("axbc")}},
  };
  for (const Search& search : searches) {
    RegexBudget budget;
    const RegexPattern pattern(search.expression, budget);
    const std::size_t place = &search - searches;
    for (const XStringView text : search.found) EXPECT_TRUE(Finds(pattern, text)) << place << ", " << text.size();
    for (const XStringView text : search.missed) EXPECT_FALSE(Finds(pattern, text)) << place << ", " << text.size();
  }
  RegexBudget budget;
  EXPECT_FALSE(Finds(RegexPattern(XTEXT("^a"), budget, LetterCase::kCounts), XTEXT("Apple")));
}

XString Repeated(XStringView piece, int times) {
  XString whole;
  for (; times > 0; --times) whole += piece;
  return whole;
}

XString MessageFor(XStringView expression) {
  RegexBudget budget;
  return MessageOf<CXlBadRegexException>([&] { const RegexPattern pattern(expression, budget); });
}

TEST(RegexPattern, RefusesWhatIsNoExpressionOrNoneToBeTrusted) {
  for (const XStringView wrong :
       {XTEXT("("), XTEXT("a)"), XTEXT("[b"), XTEXT("*"), XTEXT("\\"), XTEXT("(?R"), XTEXT("x{2,1}"),
        XTEXT("[[:nope:]]"), XTEXT("(?<=a*)b"), XTEXT("\\Q\\"), XTEXT("(?"), XTEXT("(*F")})
    EXPECT_NE(MessageFor(wrong), XTEXT("")) << wrong.size();
  EXPECT_EQ(MessageFor(XTEXT("a(")).substr(0, 20), XTEXT("Unmatched marking pa"));
  EXPECT_NE(MessageFor(Repeated(XTEXT("("), 1000) + Repeated(XTEXT(")"), 1000)), XTEXT(""));

  const XString many = Repeated(XTEXT("(?:a|a)"), 17);
  for (const XStringView start : {XTEXT("(?<="), XTEXT("(?<!"), XTEXT("[)|]\\(\\Q(?#\\E(?#[)(?<="), XTEXT("(?<n[>(?<="),
                                  XTEXT("(a)(?(1)b|c)(?<="), XTEXT("(?x:#)\n(?<="), XTEXT("(?((?<=")})
    EXPECT_NE(MessageFor(XString(start) + many + XTEXT(")b)")), XTEXT("")) << start.size();
  const XString bars = Repeated(XTEXT("a|"), 17);
  for (const XString& fine :
       {bars + XTEXT("(?<=x|y)z"), XTEXT("[(?<=]") + bars, XTEXT("(?#(?<=)") + bars, XTEXT("\\Q(?<=\\E") + bars,
        XString(XTEXT("(?<=[]|||||||||||||||||[:alpha:]|])b")), XTEXT("(?<=") + bars.substr(0, 32) + XTEXT("a)b")})
    EXPECT_EQ(MessageFor(fine), XTEXT("")) << fine.size();
}

struct Endless {
  XString expression;
  XString text;
};

/// Whether the text goes past what a call may spend.
bool GivesUp(const RegexPattern& pattern, XStringView text) {
  try {
    EXPECT_FALSE(Finds(pattern, text));
    return false;
  } catch (const CXlRegexLimitException& error) {
    EXPECT_NE(error.Message(), XTEXT(""));
    return true;
  }
}

TEST(RegexPattern, EndsInTimeAndAnswersOrdinaryTextsAllTheSame) {
  const XString letters(30'000, XTEXT('a'));
  const Endless endless[] = {
      {XTEXT("(a+)+(?=$)"), letters + XTEXT("!")},
      {XTEXT("(?:(?=(a+))a)*b"), letters},
      {Repeated(XTEXT("(?:a|b|c|d)?"), 46) + XTEXT("(a+)+(?=$)"), letters.substr(0, 3'000) + XTEXT("!")},
      {XTEXT("(?>a+)+b"), letters},
      {XTEXT("(a?(?1)?a)b"), letters},
      {Repeated(XTEXT("(?:|)"), 2'000) + XTEXT("\\b"), {}},
  };
  int spent = 0;
  for (const Endless& each : endless) {
    RegexBudget budget;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(GivesUp(RegexPattern(each.expression, budget), each.text)) << each.expression.size();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10)) << each.expression.size();
    spent += budget.IsSpent();
    EXPECT_TRUE(GivesUp(RegexPattern(each.expression, budget), each.text)) << each.expression.size();
    const RegexPattern ordinary(XTEXT("^K.*7[0-9]*3$"), budget);
    for (int text = 0; text < 1'000; ++text) EXPECT_TRUE(Finds(ordinary, XTEXT("k1727773")));
  }
  EXPECT_GE(spent, 5);

  RegexBudget budget;
  EXPECT_FALSE(Finds(RegexPattern(XTEXT("(a+)+$"), budget), letters + XTEXT("!")));
  EXPECT_TRUE(Finds(RegexPattern(XTEXT("(?:a|b)*a(?:a|b){14}c"), budget), XTEXT("b") + letters + XTEXT("c")));
}

}  // namespace
}  // namespace quillmere::testing
