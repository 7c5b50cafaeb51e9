// The functions for VBA with pointers that fault: -1, nothing lost, no store left locked. Natively faults belong to the
// sanitizers.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <functional>
#include <limits>

#include "host/faults/spoilt_memory.h"
#include "host/library/allocation.h"
#include "tests/addin/vba_exports.h"

namespace qcalc {
namespace {

using ::testing::ElementsAre;
using ::testing::Pair;

/// An array that ends where no memory follows.
class CutArray {
 public:
  explicit CutArray(std::int32_t count) : memory_(sizeof(std::int32_t) * static_cast<std::size_t>(count)) {
    for (std::int32_t i = 0; i < count; ++i) data()[i] = i;
  }
  std::int32_t* data() const { return reinterpret_cast<std::int32_t*>(memory_.data()); }
  std::int32_t* Unreadable() const { return static_cast<std::int32_t*>(memory_.Unreadable()); }

 private:
  SpoiltMemory memory_;
};

/// The library alone, as a Declare statement loads it when the add-in has not been opened.
class VbaFaults : public ::testing::Test {
 protected:
  VbaFaults() { AddinAllocations().TrackBlocks(); }

  static std::unique_ptr<Library> Load() {
    std::string error;
    std::unique_ptr<Library> loaded = Library::Load(ProgramFolder() / "Quillmere4.xll", error);
    EXPECT_TRUE(loaded) << error;
    MeterAllocations(*loaded);
    return loaded;
  }

  /// Makes a call that fails again and again, and says how many blocks of memory that took.
  std::int64_t BlocksLostBy(const std::function<std::int32_t()>& call) {
    EXPECT_EQ(call(), -1);
    const std::int64_t before = AddinAllocations().LiveBlocks();
    for (int i = 0; i < 50; ++i) EXPECT_EQ(call(), -1);
    return AddinAllocations().LiveBlocks() - before;
  }

  const std::unique_ptr<Library> library = Load();
  const NumberStoreExports rows{*library, "RowID"};
  const CutArray some{10};
};

TEST_F(VbaFaults, PairsThatCannotBeRead) {
  constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
  const std::vector<std::int32_t> plenty(100, 5);
  for (std::int32_t* const nowhere : {some.Unreadable(), reinterpret_cast<std::int32_t*>(4)}) {
    EXPECT_EQ(BlocksLostBy([&] { return rows.put(nowhere, some.data(), 1); }), 0);
    EXPECT_EQ(BlocksLostBy([&] { return rows.put(some.data(), nowhere, 1); }), 0);
  }
  EXPECT_EQ(rows.count(), 0u);
  EXPECT_EQ(BlocksLostBy([&] { return rows.put(some.data(), some.data(), kMost); }), 0);
  EXPECT_EQ(rows.count(), 10u) << "those before the fault stay";
  ASSERT_EQ(rows.destroy(), 1);
  EXPECT_EQ(BlocksLostBy([&] { return rows.put(plenty.data(), some.data(), 100); }), 0);
  EXPECT_THAT(rows.Entries(), ElementsAre(Pair(5, 9)));
}

TEST_F(VbaFaults, ResultsThatCannotBeWritten) {
  ASSERT_EQ(rows.put(some.data(), some.data(), 10), 1);
  std::vector<std::int32_t> room(10);
  const CutArray small(3);
  const std::size_t bytes = room.size() * sizeof(std::int32_t);
  void* const readOnly = VirtualAlloc(nullptr, bytes, MEM_COMMIT | MEM_RESERVE, PAGE_READONLY);
  ASSERT_NE(readOnly, nullptr);
  for (std::int32_t* const bad : {static_cast<std::int32_t*>(readOnly), some.Unreadable(), small.data()}) {
    EXPECT_EQ(BlocksLostBy([&] { return rows.get(bad, room.data()); }), 0);
    EXPECT_EQ(BlocksLostBy([&] { return rows.get(room.data(), bad); }), 0);
  }
  VirtualFree(readOnly, 0, MEM_RELEASE);
  EXPECT_EQ(rows.Entries().size(), 10u);
}

TEST_F(VbaFaults, APathThatCannotBeRead) {
  const auto binaryType = library->FindAs<std::int32_t (*)(const char*)>("l64BitExe");
  EXPECT_EQ(binaryType(reinterpret_cast<const char*>(some.Unreadable())), -1);
}

}  // namespace
}  // namespace qcalc
