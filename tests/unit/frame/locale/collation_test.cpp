// Sort keys in the user's language. It is American English, which the tests run in.
#include "frame/locale/collation.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

TEST(CollationKeys, StandAsTheTextsDo) {
  const XStringView words[] = {XTEXT(""),     XTEXT(" "),     XTEXT("10"),    XTEXT("9"),    XTEXT("a"),
                               XTEXT("b"),    XTEXT("cote"),  XTEXT("coté"),  XTEXT("côte"), XTEXT("côté"),
                               XTEXT("Élan"), XTEXT("elbow"), XTEXT("Émile"), XTEXT("zoé"),  XTEXT("Жук")};
  for (const LetterCase letterCase : {LetterCase::kIgnored, LetterCase::kCounts})
    for (std::size_t i = 1; i < std::size(words); ++i)
      EXPECT_LT(CollationKey(words[i - 1], letterCase), CollationKey(words[i], letterCase)) << i;
  EXPECT_EQ(CollationKey(XTEXT("ÉLAN"), LetterCase::kIgnored), CollationKey(XTEXT("élan"), LetterCase::kIgnored));
  EXPECT_LT(CollationKey(XTEXT("élan"), LetterCase::kCounts), CollationKey(XTEXT("ÉLAN"), LetterCase::kCounts));
  EXPECT_LT(CollationKey(XString(30'000, 'a'), LetterCase::kCounts), CollationKey(XTEXT("b"), LetterCase::kCounts));
}

}  // namespace
}  // namespace quillmere
