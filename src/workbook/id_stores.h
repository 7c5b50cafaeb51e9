// The process-wide stores of row and column numbers, shared by the lookup memory and the functions for VBA.
//
// One timed mutex guards them all. The numbers of entries are kept apart and are read without it.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "xlcall/xchar.h"

namespace quillmere::workbook {

/// The two stores whose keys are whole numbers.
enum class NumberStore { kRowIds, kColumnIds };

// On any thread. Reading waits for the lock as long as it takes. Writing gives up after `kStoreWait` and returns false,
// with nothing stored. std::bad_alloc leaves a store as it was. Nothing of the host's memory is read or written here:
// callers copy keys in and results out before and after.

std::optional<std::int32_t> FindRowId(XStringView key);
bool StoreRowId(XStringView key, std::int32_t number);
/// Whether there was such an entry, and it is gone.
bool EraseRowId(XStringView key);
/// All entries, in no order.
std::vector<std::pair<XString, std::int32_t>> TextStoreEntries();

std::optional<std::int32_t> FindId(NumberStore store, std::int32_t key);
bool StoreId(NumberStore store, std::int32_t key, std::int32_t number);
/// The entries in the map's order; nothing when the lock could not be taken.
std::optional<std::vector<std::pair<std::int32_t, std::int32_t>>> NumberStoreEntries(NumberStore store);

std::uint32_t TextStoreCount() noexcept;
std::uint32_t NumberStoreCount(NumberStore store) noexcept;

/// Empty a store; false when `kDestroyWait` passed without the lock.
bool ClearTextStore();
bool ClearNumberStore(NumberStore store);

}  // namespace quillmere::workbook
