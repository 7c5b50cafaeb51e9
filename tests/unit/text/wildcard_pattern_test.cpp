// Wildcard matching held against a slow and plain model, and against texts that make a careless matcher slow.
#include "text/wildcard_pattern.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <vector>

#include "frame/errors/exceptions.h"

namespace quillmere::testing {

using namespace text;
namespace {

/// Whether each beginning of the text matches, worked out one unit of the pattern after the other.
bool PlainMatch(XStringView pattern, XStringView text) {
  std::vector<char> matched(text.size() + 1);
  matched[0] = 1;
  for (const XCHAR wanted : pattern) {
    std::vector<char> next(text.size() + 1);
    for (std::size_t at = 0; at <= text.size(); ++at) {
      if (wanted == XTEXT('*'))
        next[at] = matched[at] || (at > 0 && next[at - 1]);
      else
        next[at] = at > 0 && matched[at - 1] && (wanted == XTEXT('?') || wanted == text[at - 1]);
    }
    matched = next;
  }
  return matched.back() != 0;
}

bool Matches(XStringView pattern, XStringView text, bool caseSensitive = false) {
  // In a block of its own, so that a sanitizer sees a read outside.
  const std::unique_ptr<XCHAR[]> units(new XCHAR[text.size()]);
  std::copy(text.begin(), text.end(), units.get());
  return WildcardPattern(pattern, caseSensitive).Matches({units.get(), text.size()});
}

TEST(WildcardPattern, IgnoresTheCaseOfEveryLetterOrOfNone) {
  EXPECT_FALSE(Matches(XTEXT("*b?"), XTEXT("aBc"), true));
  const XStringView capitals = XTEXT("A\u00C9\u0416\u0178\u1E9E");
  const XStringView small = XTEXT("a\u00E9\u0436\u00FF\u1E9E");
  EXPECT_TRUE(Matches(capitals, small));
  EXPECT_TRUE(Matches(XTEXT("*\u00E9*"), capitals));
  EXPECT_FALSE(Matches(capitals, small, true));
  EXPECT_FALSE(Matches(XTEXT("k"), XTEXT("\u212A")));
  EXPECT_FALSE(Matches(XTEXT("i"), XTEXT("\u0130")));
  EXPECT_FALSE(Matches(XTEXT("@["), XTEXT("`{")));
  for (std::size_t units = 1; units < 20; ++units) {
    for (std::size_t at = 0; at < units; ++at) {
      XString text(units, XTEXT('A'));
      text[at] = 0x00C9;
      EXPECT_TRUE(Matches(XTEXT("*\u00E9*"), text)) << units << ", " << at;
    }
  }
}

/// Random units, patterns and texts, the same for the same seed.
class Drawing {
 public:
  unsigned seed = std::random_device()();

  std::size_t Below(std::size_t limit) { return random_() % limit; }
  XString Units(XStringView alphabet, std::size_t least, std::size_t most) {
    XString units(least + Below(most - least + 1), XCHAR{});
    for (XCHAR& unit : units) unit = alphabet[Below(alphabet.size())];
    return units;
  }
  /// A text that a pattern matches.
  XString Instance(XStringView pattern) {
    XString text;
    for (const XCHAR unit : pattern)
      text += unit == XTEXT('*')   ? Units(XTEXT("ab"), 0, 9)
              : unit == XTEXT('?') ? Units(XTEXT("ab\n"), 1, 1)
                                   : XString(1, unit);
    return text;
  }
  /// One unit of two texts in three becomes another.
  void Spoil(XString& text) {
    if (!text.empty() && Below(3) != 0) text[Below(text.size())] = XTEXT('b');
  }

 private:
  std::mt19937 random_{seed};
};

TEST(WildcardPattern, MatchesWhatThePlainModelMatches) {
  // Nothing but * and ? has a meaning.
  const XStringView forPatterns(XTEXT("aaaabb????**~.\n\0"), 16);
  Drawing draw;
  int matched = 0;
  for (int round = 0; round < 10'000; ++round) {
    const XString pattern = draw.Units(forPatterns, 0, 8);
    XString text = draw.Below(2) == 0 ? draw.Units(XTEXT("aab"), 0, 24) : draw.Instance(pattern);
    draw.Spoil(text);
    const bool expected = PlainMatch(pattern, text);
    ASSERT_EQ(Matches(pattern, text, draw.Below(2) == 0), expected) << "seed " << draw.seed << ", round " << round;
    matched += expected;
  }
  EXPECT_GT(matched, 1500);
  EXPECT_LT(matched, 8500);
}

TEST(WildcardPattern, FindsLongSegmentsBehindTheirBeginnings) {
  static const XStringView kAlphabets[] = {XTEXT("aaaaaaaaaaaaaaaaaaab?"), XTEXT("abcd???"),
                                           XTEXT("abcdefghijklmnopqrstuvwxyz0123456789?")};
  Drawing draw;
  int matched = 0;
  for (int round = 0; round < 2'000; ++round) {
    const XString segment = draw.Units(kAlphabets[round % 3], 60, 330);
    XString text;
    for (std::size_t count = draw.Below(4); count != 0; --count)
      text += draw.Instance(XStringView(segment).substr(0, draw.Below(segment.size()))) + draw.Units(XTEXT("ab"), 0, 2);
    text += draw.Instance(segment);
    draw.Spoil(text);
    text += draw.Units(XTEXT("ab"), 0, 20);
    const XString pattern = XTEXT("*") + segment + draw.Units(XTEXT("*ab"), 0, 2) + XTEXT("*");
    const bool expected = PlainMatch(pattern, text);
    ASSERT_EQ(Matches(pattern, text, draw.Below(2) == 0), expected) << "seed " << draw.seed << ", round " << round;
    matched += expected;
  }
  EXPECT_GT(matched, 300);
  EXPECT_LT(matched, 1700);
}

TEST(WildcardPattern, EndsAtOnceWhateverThePattern) {
  const XString text(30'000, XTEXT('a'));
  XString stars;
  for (int at = 0; at < 15'000; ++at) stars += XTEXT("*a");
  XString holed = XTEXT("*");
  for (int at = 0; at < 7'500; ++at) holed += XTEXT("a?");
  XString many = XTEXT("*");
  for (int at = 0; at < 15'000; ++at) many += static_cast<XCHAR>(0x4000 + at % 12'000);
  for (int round = 0; round < 5; ++round) {
    EXPECT_FALSE(Matches(XTEXT("*a*a*a*a*b"), text));
    EXPECT_FALSE(Matches(stars + XTEXT("*b*"), text));
    EXPECT_TRUE(Matches(stars, text));
    EXPECT_FALSE(Matches(holed + XTEXT("b*"), text));
    EXPECT_TRUE(Matches(holed + XTEXT("*"), text));
    EXPECT_FALSE(Matches(XTEXT("*") + XString(15'000, XTEXT('a')) + XTEXT("b*"), text, true));
    EXPECT_FALSE(Matches(many + XTEXT("*"), text));
    EXPECT_TRUE(Matches(many + XTEXT("*"), text.substr(0, 9'000) + many));
  }
  EXPECT_TRUE(Matches(XString(32'767, XTEXT('?')), XString(32'767, XTEXT('x'))));
  EXPECT_FALSE(Matches(XTEXT("*") + XString(70'000, XTEXT('?')) + XTEXT("*"), text));
  EXPECT_THROW(Matches(XTEXT("*"), XString(32'768, XTEXT('x'))), CXlStringTooLongException);
}

}  // namespace
}  // namespace quillmere::testing
