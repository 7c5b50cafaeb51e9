// Wildcard matching against texts that make a careless matcher slow.
#include "text/wildcard_pattern.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "frame/errors/exceptions.h"

namespace quillmere::testing {

using namespace text;
namespace {

bool Matches(XStringView pattern, XStringView text, bool caseSensitive = false) {
  // In a block of its own, so that a sanitizer sees a read outside.
  const std::unique_ptr<XCHAR[]> units(new XCHAR[text.size()]);
  std::copy(text.begin(), text.end(), units.get());
  return WildcardPattern(pattern, caseSensitive).Matches({units.get(), text.size()});
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
