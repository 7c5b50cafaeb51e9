// The stores of row and column numbers: what the exports and the worksheet do not show of them.
#include "workbook/id_stores.h"

#include <gtest/gtest.h>

#include <thread>

#include "tests/unit/fixtures/failing_memory.h"

namespace quillmere::testing {

using namespace workbook;
namespace {

class IdStores : public ::testing::Test {
 protected:
  ~IdStores() override {
    EXPECT_TRUE(ClearTextStore());
    EXPECT_TRUE(ClearNumberStore(NumberStore::kRowIds));
    EXPECT_TRUE(ClearNumberStore(NumberStore::kColumnIds));
  }
};

/// FailEachAllocation sees to it that no failure leaves a block behind.
TEST_F(IdStores, AFailureLeavesTheStoreAsItWas) {
  const XString key(100, XTEXT('k'));
  EXPECT_GE(FailEachAllocation([&key] {
              EXPECT_EQ(TextStoreCount(), 0u);
              EXPECT_EQ(FindRowId(key), std::nullopt);
              StoreRowId(key, 1);
              ClearTextStore();
            }),
            2);
  EXPECT_GE(FailEachAllocation([] {
              EXPECT_EQ(NumberStoreCount(NumberStore::kRowIds), 0u);
              StoreId(NumberStore::kRowIds, 5, 6);
              ClearNumberStore(NumberStore::kRowIds);
            }),
            1);
}

TEST_F(IdStores, AnEntryIsOverwrittenWithoutMemory) {
  const XString key(100, XTEXT('k'));
  ASSERT_TRUE(StoreRowId(key, 1));
  EXPECT_EQ(FailEachAllocation([&key] { StoreRowId(key, 2); }), 0);
  EXPECT_EQ(FailEachAllocation([&key] { EXPECT_EQ(FindRowId(key), 2); }), 0) << "found by a view";
}

TEST_F(IdStores, EightThreadsAtOnce) {
  const auto work = [](int thread) {
    for (int round = 0; round < 500; ++round) {
      const XString key = XTEXT("the key of a thread: ") + XString(1, static_cast<XCHAR>(XTEXT('a') + round % 7));
      StoreRowId(key, round % 7);
      EXPECT_EQ(FindRowId(key).value_or(round % 7), round % 7);
      if (round % 50 == thread) ClearTextStore();
      if (round % 50 == thread + 10) EraseRowId(key);
      if (round % 50 == thread + 20) {
        EXPECT_LE(TextStoreEntries().size(), 7u);
      }
      EXPECT_LE(TextStoreCount(), 7u);
    }
  };
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 8; ++thread) threads.emplace_back(work, thread);
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(TextStoreCount(), TextStoreEntries().size());
}

}  // namespace
}  // namespace quillmere::testing
