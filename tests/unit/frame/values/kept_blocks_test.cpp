// Large blocks of results, kept for the results to come.
#include "frame/values/kept_blocks.h"

#include <gtest/gtest.h>

#include "frame/app/xll_app.h"
#include "frame/entry/coarse_clock.h"
#include "frame/values/array_builder.h"
#include "tests/unit/fixtures/failing_memory.h"

namespace quillmere::testing {
namespace {

constexpr std::size_t kMegabyte = kLeastKeptBytes;

class KeptBlocks : public ::testing::Test {
 protected:
  ~KeptBlocks() override { ReleaseKeptBlocks(); }
  /// Blocks taken and not given to the system, those of the test itself aside.
  std::int64_t Live() const { return LiveBlocks() - before_; }

 private:
  const std::int64_t before_ = (ReleaseKeptBlocks(), LiveBlocks());
};

/// Takes blocks of so many megabytes and gives them back in that order; where they were.
template <std::size_t count>
void TakeAndGive(const std::size_t (&megabytes)[count], void* (&places)[count]) {
  MemoryBlock blocks[count];
  for (std::size_t at = 0; at < count; ++at) blocks[at] = TakeBlock(megabytes[at] * kMegabyte);
  for (std::size_t at = 0; at < count; ++at) GiveBlock(blocks[at]);
  for (std::size_t at = 0; at < count; ++at) places[at] = blocks[at].memory;
}

TEST_F(KeptBlocks, ServeTheNextResults) {
  void* places[3];
  TakeAndGive({4, 3, 8}, places);
  EXPECT_EQ(Live(), 3);
  const MemoryBlock best = TakeBlock(2 * kMegabyte);
  EXPECT_EQ(best.memory, places[1]) << "the smallest that fits";
  EXPECT_EQ(best.bytes, 3 * kMegabyte);
  const MemoryBlock small = TakeBlock(kMegabyte);
  EXPECT_EQ(Live(), 4) << "all others are more than twice as large";
  GiveBlock(small);
  GiveBlock(best);
  GiveBlock(TakeBlock(kMegabyte - 1));
  EXPECT_EQ(Live(), 4) << "below a megabyte nothing is kept";
}

TEST_F(KeptBlocks, GoBackOldestFirst) {
  void* places[3];
  TakeAndGive({100, 101, 102}, places);
  EXPECT_EQ(Live(), 2);
  const MemoryBlock next = TakeBlock(100 * kMegabyte);
  EXPECT_EQ(next.memory, places[1]);
  GiveBlock(next);
  GiveBlock(TakeBlock(300 * kMegabyte));
  EXPECT_EQ(Live(), 2) << "what is larger than all that may be kept leaves the others alone";
}

TEST_F(KeptBlocks, GoBackForNoSmallerOne) {
  void* places[2];
  TakeAndGive({150, 100}, places);
  GiveBlock(TakeBlock(40 * kMegabyte));
  GiveBlock(TakeBlock(150 * kMegabyte));
  EXPECT_EQ(Live(), 2);
  const MemoryBlock other = TakeBlock(90 * kMegabyte);
  EXPECT_EQ(other.memory, places[1]);
  GiveBlock(other);
}

TEST_F(KeptBlocks, GoBackWhenUnusedClosedOrWanted) {
  const auto give = [] { GiveBlock(TakeBlock(kMegabyte)); };
  give();
  ReleaseIdleBlocks(CoarseTime() + 9'000);
  EXPECT_EQ(Live(), 1);
  ReleaseIdleBlocks(CoarseTime() + 10'001);
  EXPECT_EQ(Live(), 0);
  give();
  CXllApp::AutoClose();
  EXPECT_EQ(Live(), 0);
  give();
  FailNextAllocation();
  EXPECT_NO_THROW(::operator delete(::operator new(8)));
  EXPECT_EQ(Live(), 0);
}

TEST_F(KeptBlocks, HoldCellsAndTexts) {
  const XString text(30'000, XTEXT('t'));
  const auto build = [&text] {
    CXlArrayBuilder builder(40, 1'000);
    builder.Fill(builder.Row(0), 40'000, 1, NumberCell(1));
    for (int row = 0; row < 40; ++row) builder.PutText(row, 0, text);
    return builder.Finish();
  };
  const std::int64_t before = Live();
  const CXlOper first = build();
  const std::int64_t each = Live() - before;
  build();
  EXPECT_EQ(Live() - before, each + 2) << "the cells, and the last of the chunks of text";
  const CXlOper again = build();
  EXPECT_EQ(Live() - before, 2 * each);
}

}  // namespace
}  // namespace quillmere::testing
