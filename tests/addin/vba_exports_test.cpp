// The ID stores as VBA code fills, reads and empties them.
#include "tests/addin/vba_exports.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <thread>

#include "host/library/allocation.h"
#include "host/scripts/session.h"
#include "host/values/literal.h"

namespace qcalc {

NumberStoreExports::Pairs NumberStoreExports::Entries() const {
  std::vector<std::int32_t> keys(count());
  std::vector<std::int32_t> numbers(keys.size());
  EXPECT_EQ(get(keys.data(), numbers.data()), 1);
  Pairs pairs;
  for (std::size_t i = 0; i < keys.size(); ++i) pairs.emplace_back(keys[i], numbers[i]);
  std::sort(pairs.begin(), pairs.end());
  return pairs;
}

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

class VbaExports : public ::testing::Test {
 protected:
  ~VbaExports() override {
    session.Finish();
    EXPECT_THAT(session.Host().complaints.Take(), IsEmpty());
  }

  std::string Evaluate(const std::string& text) {
    return PrintLiteral(session.Contents(session.Evaluate(*ParseFormula(text))));
  }

  Session session{ProgramFolder() / "Quillmere4.xll"};
  const Library& library = (session.Open(), *session.Host().library);
  const NumberStoreExports rows{library, "RowID"};
  const NumberStoreExports columns{library, "ColID"};
};

TEST_F(VbaExports, PutCountGetAndDestroy) {
  const std::int32_t keys[] = {7, -7, std::numeric_limits<std::int32_t>::min(), 7, 0, 99};
  const std::int32_t numbers[] = {1, 2, 3, 4, std::numeric_limits<std::int32_t>::max(), 99};
  EXPECT_EQ(rows.put(keys, numbers, 5), 1);
  EXPECT_EQ(rows.count(), 4u);
  EXPECT_THAT(rows.Entries(), ElementsAre(Pair(keys[2], 3), Pair(-7, 2), Pair(0, numbers[4]), Pair(7, 4)));
  EXPECT_EQ(columns.count(), 0u) << "a store of its own";

  EXPECT_EQ(columns.put(keys, numbers, 1), 1);
  EXPECT_EQ(rows.put(&keys[1], &numbers[5], 1), 1);
  EXPECT_EQ(rows.count(), 4u);
  EXPECT_THAT(rows.Entries(), ::testing::Contains(Pair(-7, 99)));

  EXPECT_EQ(rows.destroy(), 1);
  EXPECT_EQ(rows.count(), 0u);
  EXPECT_THAT(columns.Entries(), ElementsAre(Pair(7, 1)));
  EXPECT_EQ(columns.destroy(), 1);
  EXPECT_EQ(columns.destroy(), 1) << "an empty one";
  EXPECT_EQ(columns.count(), 0u);
}

TEST_F(VbaExports, ManyPairs) {
  constexpr std::int32_t kPairs = 50'000;
  std::vector<std::int32_t> keys(kPairs);
  std::vector<std::int32_t> numbers(kPairs);
  for (std::int32_t i = 0; i < kPairs; ++i) {
    keys[i] = (i - kPairs / 2) * 1009;
    numbers[i] = ~i;
  }
  ASSERT_EQ(rows.put(keys.data(), numbers.data(), kPairs), 1);
  const NumberStoreExports::Pairs pairs = rows.Entries();
  ASSERT_EQ(pairs.size(), std::size_t{kPairs});
  for (std::int32_t i = 0; i < kPairs; ++i) ASSERT_THAT(pairs[i], Pair(keys[i], numbers[i]));
}

TEST_F(VbaExports, CountsAndPointersThatMakeNoSense) {
  const std::int32_t some[] = {1, 2};
  std::int32_t room[2] = {};
  for (const NumberStoreExports& store : {rows, columns}) {
    EXPECT_EQ(store.put(some, some, 0), 1);
    EXPECT_EQ(store.put(nullptr, nullptr, 0), 1);
    EXPECT_EQ(store.get(nullptr, nullptr), 1) << "there is nothing to write";
    EXPECT_EQ(store.put(some, some, -1), -1);
    EXPECT_EQ(store.put(some, some, std::numeric_limits<std::int32_t>::min()), -1);
    EXPECT_EQ(store.put(nullptr, some, 2), -1);
    EXPECT_EQ(store.put(some, nullptr, 2), -1);
    EXPECT_EQ(store.count(), 0u);
    EXPECT_EQ(store.put(some, some, 2), 1);
    EXPECT_EQ(store.get(nullptr, room), -1);
    EXPECT_EQ(store.get(room, nullptr), -1);
    EXPECT_EQ(store.destroy(), 1);
  }
}

TEST_F(VbaExports, TextsComeFromTheSheet) {
  const auto count = library.FindAs<std::uint32_t (*)()>("Get_RowIDString_Count");
  const auto destroy = library.FindAs<std::int32_t (*)()>("Destroy_RowIDString");
  EXPECT_EQ(count(), 0u);
  EXPECT_EQ(Evaluate("=Put_RowIDString({\"a\",1;\"b\",2;\"a\",3})"), "1");
  EXPECT_EQ(count(), 2u);
  EXPECT_EQ(Evaluate("=Erase_RowIDString(\"b\")"), "1");
  EXPECT_EQ(count(), 1u);
  EXPECT_EQ(rows.count(), 0u);
  EXPECT_EQ(rows.destroy(), 1);
  EXPECT_EQ(Evaluate("=Get_RowIdString()"), "{\"a\",3}");
  EXPECT_EQ(destroy(), 1);
  EXPECT_EQ(count(), 0u);
  EXPECT_EQ(Evaluate("=Get_RowIdString()"), "#N/A");
}

TEST_F(VbaExports, ClosingTheAddInLeavesTheStores) {
  const std::int32_t one = 1;
  ASSERT_EQ(rows.put(&one, &one, 1), 1);
  ASSERT_EQ(Evaluate("=Put_RowIDString({\"a\",1})"), "1");
  EXPECT_EQ(session.CallClose(), 1);
  EXPECT_EQ(rows.count(), 1u);
  EXPECT_EQ(Evaluate("=Get_RowIdString()"), "{\"a\",1}");
}

TEST_F(VbaExports, MemoryThatRunsOutKeepsThePairsBefore) {
  const std::int32_t keys[] = {1, 2, 3, 4};
  int failures = 0;
  for (std::int64_t nth = 1;; ++nth) {
    ASSERT_EQ(rows.destroy(), 1);
    AddinAllocations().Fail(nth, AllocationFailure::kOnce);
    AddinAllocations().Start();
    std::int32_t answer = 0;
    {
      const RunningCode running(RunningCode::Owner::kAddin);
      answer = rows.put(keys, keys, 4);
    }
    AddinAllocations().Stop();
    if (AddinAllocations().Failed() == 0) {
      EXPECT_EQ(answer, 1);
      break;
    }
    ++failures;
    EXPECT_EQ(answer, -1);
    const NumberStoreExports::Pairs pairs = rows.Entries();
    ASSERT_LT(pairs.size(), 4u) << "allocation " << nth;
    for (std::size_t i = 0; i < pairs.size(); ++i) EXPECT_THAT(pairs[i], Pair(keys[i], keys[i]));
  }
  EXPECT_GE(failures, 4) << "one a pair at least";
  EXPECT_EQ(rows.count(), 4u);
}

TEST(VbaStores, AreGivenBackWhenTheLibraryIsUnloaded) {
  AddinAllocations().TrackBlocks();
  const std::int64_t before = AddinAllocations().LiveBlocks();
  const std::int32_t keys[] = {1, 2, 3, 4};
  {
    std::string error;
    const std::unique_ptr<Library> library = Library::Load(ProgramFolder() / "Quillmere4.xll", error);
    ASSERT_TRUE(library) << error;
    MeterAllocations(*library);
    const RunningCode running(RunningCode::Owner::kAddin);
    for (const char* const ids : {"RowID", "ColID"})
      EXPECT_EQ(NumberStoreExports(*library, ids).put(keys, keys, 4), 1) << "the add-in need not be open";
    EXPECT_GT(AddinAllocations().LiveBlocks(), before + 8);
  }
  EXPECT_EQ(AddinAllocations().LiveBlocks(), before);
}

/// Each thread stores, reads and empties. A thread that waits in vain for the store is told so: that is no fault.
TEST_F(VbaExports, EightThreadsAtOnce) {
  constexpr int kThreads = 8;
  constexpr int kRounds = 400;
  constexpr std::int32_t kKeys = 64;
  const auto work = [this](int thread) {
    std::mt19937 random(static_cast<unsigned>(thread));
    std::int32_t keys[kKeys];
    std::int32_t numbers[kKeys];
    for (int round = 0; round < kRounds; ++round) {
      const NumberStoreExports& store = random() % 2 == 0 ? rows : columns;
      const auto count = static_cast<std::int32_t>(random() % kKeys);
      for (std::int32_t i = 0; i < count; ++i) {
        keys[i] = static_cast<std::int32_t>(random() % kKeys);
        numbers[i] = keys[i] * 1000 + static_cast<std::int32_t>(random() % 1000);
      }
      store.put(keys, numbers, count);
      EXPECT_LE(store.count(), std::uint32_t{kKeys});
      std::fill(std::begin(keys), std::end(keys), -1);
      if (store.get(keys, numbers) == 1) {
        const auto* const end = std::find(std::begin(keys), std::end(keys), -1);
        for (std::int32_t i = 0; i < end - keys; ++i) EXPECT_EQ(numbers[i] / 1000, keys[i]);
      }
      if (random() % 16 == 0) store.destroy();
    }
  };
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) threads.emplace_back(work, thread);
  for (std::thread& thread : threads) thread.join();
  for (const NumberStoreExports& store : {rows, columns}) {
    EXPECT_EQ(store.Entries().size(), store.count());
    EXPECT_EQ(store.destroy(), 1);
  }
}

}  // namespace
}  // namespace qcalc
