// The ID stores while a thread stays in them.
#include "workbook/id_stores.h"

#include <gtest/gtest.h>

#include <future>

#include "frame/call/store_lock.h"
#include "tests/unit/fixtures/failing_memory.h"

extern "C" {
std::int32_t Put_RowIDLongs(const std::int32_t* keys, const std::int32_t* numbers, std::int32_t count);
std::int32_t Get_RowIDLongs(std::int32_t* keys, std::int32_t* numbers);
std::int32_t Destroy_RowIDLong();
std::int32_t Destroy_ColIDLong();
std::int32_t Destroy_RowIDString();
}

namespace quillmere::workbook {
namespace {

using Seconds = std::chrono::duration<double>;

struct Wait {
  bool (*call)();  ///< whether it came to the store
  Seconds least;
  Seconds most;
};

TEST(IdStores, WhoWaitsInVainIsToldInTimeAndChangesNothing) {
  static std::int32_t seven = 7;
  ASSERT_EQ(Put_RowIDLongs(&seven, &seven, 1), 1);
  ASSERT_TRUE(StoreRowId(XTEXT("kept"), 1));
  std::promise<void> inside, leave;
  const std::future<void> mayLeave = leave.get_future();
  const auto holder = std::async(std::launch::async, [&] {
    testing::HoldNextAllocation(inside, mayLeave);
    StoreId(NumberStore::kColumnIds, 1, 2);
  });
  inside.get_future().wait();

  const Wait waits[] = {
      {[] { return Put_RowIDLongs(&seven, &seven, 1) != -1; }, kStoreWait, kDestroyWait},
      {[] { return Get_RowIDLongs(&seven, &seven) != -1; }, kStoreWait, kDestroyWait},
      {[] { return StoreRowId(XTEXT("more"), 1); }, kStoreWait, kDestroyWait},
      {[] { return EraseRowId(XTEXT("kept")); }, kStoreWait, kDestroyWait},
      {[] { return Destroy_RowIDLong() != -1; }, kDestroyWait, 4 * kDestroyWait},
      {[] { return Destroy_ColIDLong() != -1; }, kDestroyWait, 4 * kDestroyWait},
      {[] { return Destroy_RowIDString() != -1; }, kDestroyWait, 4 * kDestroyWait},
  };
  std::vector<std::future<void>> running;
  for (const Wait& wait : waits)
    running.push_back(std::async(std::launch::async, [&wait] {
      const auto start = std::chrono::steady_clock::now();
      EXPECT_FALSE(wait.call());
      const Seconds waited = std::chrono::steady_clock::now() - start;
      EXPECT_TRUE(waited >= wait.least && waited < wait.most) << waited.count() << " s";
    }));
  for (const std::future<void>& each : running) each.wait_for(waits->most);
  EXPECT_EQ(TextStoreCount(), 1u);
  EXPECT_EQ(NumberStoreCount(NumberStore::kRowIds), 1u) << "counts wait for nobody";

  leave.set_value();
  holder.wait();
  running.clear();
  EXPECT_EQ(FindRowId(XTEXT("kept")), 1);
  EXPECT_EQ(FindId(NumberStore::kColumnIds, 1), 2);
  EXPECT_EQ(Destroy_RowIDLong() + Destroy_ColIDLong() + Destroy_RowIDString(), 3);
  EXPECT_EQ(FindId(NumberStore::kRowIds, 7), std::nullopt);
}

}  // namespace
}  // namespace quillmere::workbook
