// The ID stores as VBA code fills, reads and empties them.
#include "tests/addin/vba_exports.h"

#include <algorithm>
#include <limits>
#include <thread>

#include "tests/host/session_fixture.h"

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
using ::testing::Pair;

class VbaExports : public SessionTest {
 protected:
  VbaExports() : SessionTest("Quillmere4.xll") {}

  const Library& library = (session.Open(), *session.Host().library);
  const NumberStoreExports rows{library, "RowID"};
  const NumberStoreExports columns{library, "ColID"};
};

TEST_F(VbaExports, PutCountGetAndDestroy) {
  const std::int32_t keys[] = {7, -7, std::numeric_limits<std::int32_t>::min(), 7, 0};
  const std::int32_t numbers[] = {1, 2, 3, 4, std::numeric_limits<std::int32_t>::max()};
  EXPECT_EQ(rows.put(keys, numbers, 5), 1);
  EXPECT_THAT(rows.Entries(), ElementsAre(Pair(keys[2], 3), Pair(-7, 2), Pair(0, numbers[4]), Pair(7, 4)));
  EXPECT_EQ(columns.count(), 0u) << "a store of its own";
  EXPECT_EQ(columns.put(keys, numbers, 1), 1);
  EXPECT_EQ(rows.destroy(), 1);
  EXPECT_EQ(rows.count(), 0u);
  EXPECT_THAT(columns.Entries(), ElementsAre(Pair(7, 1)));
  EXPECT_EQ(columns.destroy() + columns.destroy(), 2) << "an empty one too";
  EXPECT_EQ(columns.count(), 0u);
}

TEST_F(VbaExports, CountsAndPointersThatMakeNoSense) {
  const std::int32_t some[] = {1, 2};
  std::int32_t room[2] = {};
  EXPECT_EQ(rows.put(nullptr, nullptr, 0), 1);
  EXPECT_EQ(rows.get(nullptr, nullptr), 1) << "there is nothing to write";
  EXPECT_EQ(rows.put(some, some, -1), -1);
  EXPECT_EQ(rows.put(some, some, std::numeric_limits<std::int32_t>::min()), -1);
  EXPECT_EQ(rows.put(nullptr, some, 2), -1);
  EXPECT_EQ(rows.put(some, nullptr, 2), -1);
  EXPECT_EQ(rows.count(), 0u);
  EXPECT_EQ(rows.put(some, some, 2), 1);
  EXPECT_EQ(rows.get(nullptr, room), -1);
  EXPECT_EQ(rows.get(room, nullptr), -1);
}

TEST_F(VbaExports, TextsComeFromTheSheetAndOutliveTheClosing) {
  const auto count = library.FindAs<std::uint32_t (*)()>("Get_RowIDString_Count");
  const auto destroy = library.FindAs<std::int32_t (*)()>("Destroy_RowIDString");
  EXPECT_EQ(Evaluate("=Put_RowIDString({\"a\",1;\"b\",2;\"a\",3})"), "1");
  EXPECT_EQ(session.CallClose(), 1);
  EXPECT_EQ(count(), 2u);
  EXPECT_EQ(rows.count(), 0u);
  EXPECT_EQ(rows.destroy(), 1);
  EXPECT_EQ(Evaluate("=Get_RowIdString()"), "{\"a\",3;\"b\",2}");
  EXPECT_EQ(destroy(), 1);
  EXPECT_EQ(count(), 0u);
  EXPECT_EQ(Evaluate("=Get_RowIdString()"), "#N/A");
}

/// Each thread stores, reads and empties. A thread that waits in vain for the store is told so: that is no fault.
TEST_F(VbaExports, EightThreadsAtOnce) {
  constexpr int kRounds = 400;
  constexpr std::int32_t kKeys = 64;
  const auto work = [this](int thread) {
    std::int32_t keys[kKeys], numbers[kKeys];
    for (int round = 0; round < kRounds; ++round) {
      const std::int32_t count = (round * 7 + thread) % kKeys;
      for (std::int32_t i = 0; i < count; ++i) {
        keys[i] = (i * 5 + round) % kKeys;
        numbers[i] = keys[i] * 1000 + thread;
        EXPECT_LE(rows.count(), 64u);
      }
      rows.put(keys, numbers, count);
      std::fill(std::begin(keys), std::end(keys), -1);
      if (rows.get(keys, numbers) == 1) {
        for (std::int32_t i = 0; i < kKeys && keys[i] != -1; ++i) EXPECT_EQ(numbers[i] / 1000, keys[i]);
      }
      if (round % 16 == thread) rows.destroy();
    }
  };
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 8; ++thread) threads.emplace_back(work, thread);
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(rows.Entries().size(), rows.count());
}

}  // namespace
}  // namespace qcalc
