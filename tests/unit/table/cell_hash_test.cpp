// What of the hashing of cells no result shows: that texts cannot be made to have one hash.
#include "table/cell_hash.h"

#include <gtest/gtest.h>

#include <set>

namespace quillmere::testing {
namespace {

TEST(HashText, UnitsThatAreAFactorOfNothingTakeNoOthersAway) {
  // What the words of a block would have to be if the constants were those that everyone knows.
  const XString block = XTEXT("\x7C15\x7F4A\x79B9\x9E37\xFD93\x6659\xFEB8\xD6E8");
  std::set<std::uint64_t> hashes;
  for (XCHAR unit = 0; unit < 1000; ++unit) {
    for (const std::size_t changed : {0, 4}) {
      XString text = block + block;
      text[changed] = unit;
      hashes.insert(HashText<TextCase::kCounts>(text, HashKey::OfProcess()));
    }
  }
  EXPECT_EQ(hashes.size(), 2000u);
}

}  // namespace
}  // namespace quillmere::testing
