// Sort keys in the user's language, where the builds differ. It is American English, which the tests run in.
#include "frame/locale/collation.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace quillmere {
namespace {

int OrderOf(XStringView a, XStringView b) {
  const int order = CollationKey(a, LetterCase::kIgnored).compare(CollationKey(b, LetterCase::kIgnored));
  return order < 0 ? -1 : order > 0;
}

TEST(CollationKeys, DifferBetweenTheBuilds) {
  constexpr bool isWindows = std::is_same_v<XCHAR, wchar_t>;
  const auto expectOrder = [](XStringView a, XStringView b, int onWindows, int natively) {
    EXPECT_EQ(OrderOf(a, b), isWindows ? onWindows : natively) << ::testing::PrintToString(a);
  };
  // Windows looks at hyphens and apostrophes when all else is equal.
  expectOrder(XTEXT("co-op"), XTEXT("coop"), 1, -1);
  expectOrder(XTEXT("we'll"), XTEXT("well"), 1, -1);
  expectOrder(XTEXT("co-op"), XTEXT("cooq"), -1, -1);
  // Other marks, thorn, and letters of full width.
  expectOrder(XTEXT("#"), XTEXT("_"), -1, 1);
  expectOrder(XTEXT("þ"), XTEXT("u"), -1, 1);
  expectOrder(XTEXT("ａ"), XTEXT("a"), 1, 0);
}

}  // namespace
}  // namespace quillmere
