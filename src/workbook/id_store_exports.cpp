// The functions with which VBA code fills, reads and empties the ID stores. Its pointers are taken as they come: each
// element is read and written by a plain access of its own, outside the stores' lock, so that a bad one ends the call
// with -1 and leaves nothing behind.
#include "frame/call/plain_call.h"
#include "frame/entry/export.h"
#include "workbook/id_stores.h"

namespace quillmere::workbook {
namespace {

constexpr std::int32_t kDone = 1;

std::int32_t Answer(bool done) { return done ? kDone : kPlainCallFailed; }

/// Stores the first `count` pairs; what came before a pair that cannot be read or stored stays.
std::int32_t PutPairs(NumberStore store, const std::int32_t* keys, const std::int32_t* numbers, std::int32_t count) {
  if (count == 0) return kDone;
  if (count < 0 || !keys || !numbers) return kPlainCallFailed;
  for (std::int32_t i = 0; i < count; ++i) {
    const std::int32_t key = keys[i];
    const std::int32_t number = numbers[i];
    if (!StoreId(store, key, number)) return kPlainCallFailed;
  }
  return kDone;
}

/// Writes all entries. How much room there is the caller alone knows.
std::int32_t GetPairs(NumberStore store, std::int32_t* keys, std::int32_t* numbers) {
  const auto entries = NumberStoreEntries(store);
  if (!entries) return kPlainCallFailed;
  if (entries->empty()) return kDone;
  if (!keys || !numbers) return kPlainCallFailed;
  for (const auto& [key, number] : *entries) {
    *keys++ = key;
    *numbers++ = number;
  }
  return kDone;
}

}  // namespace
}  // namespace quillmere::workbook

using quillmere::CallPlain;
using quillmere::workbook::NumberStore;

/// Stores numbers[i] under keys[i] for the first `count` elements of two arrays. 1 when all were stored; -1 at the
/// first that was not, those before it stay stored.
XLL_EXPORT std::int32_t Put_RowIDLongs(const std::int32_t* keys, const std::int32_t* numbers, std::int32_t count) {
  return CallPlain([=] { return quillmere::workbook::PutPairs(NumberStore::kRowIds, keys, numbers, count); });
}

XLL_EXPORT std::int32_t Put_ColIDLongs(const std::int32_t* keys, const std::int32_t* numbers, std::int32_t count) {
  return CallPlain([=] { return quillmere::workbook::PutPairs(NumberStore::kColumnIds, keys, numbers, count); });
}

/// Writes the keys and numbers of all entries, in the order of the map, to two arrays that have room for as many as the
/// count function tells. 1, or -1 when the store stayed locked or an array cannot be written to.
XLL_EXPORT std::int32_t Get_RowIDLongs(std::int32_t* keys, std::int32_t* numbers) {
  return CallPlain([=] { return quillmere::workbook::GetPairs(NumberStore::kRowIds, keys, numbers); });
}

XLL_EXPORT std::int32_t Get_ColIDLongs(std::int32_t* keys, std::int32_t* numbers) {
  return CallPlain([=] { return quillmere::workbook::GetPairs(NumberStore::kColumnIds, keys, numbers); });
}

// The numbers of entries, without waiting for anybody.

XLL_EXPORT std::uint32_t Get_RowIDLong_Count() { return quillmere::workbook::NumberStoreCount(NumberStore::kRowIds); }

XLL_EXPORT std::uint32_t Get_ColIDLong_Count() {
  return quillmere::workbook::NumberStoreCount(NumberStore::kColumnIds);
}

XLL_EXPORT std::uint32_t Get_RowIDString_Count() { return quillmere::workbook::TextStoreCount(); }

// Emptying a store: 1, or -1 when it stayed locked.

XLL_EXPORT std::int32_t Destroy_RowIDLong() {
  return CallPlain(
      [] { return quillmere::workbook::Answer(quillmere::workbook::ClearNumberStore(NumberStore::kRowIds)); });
}

XLL_EXPORT std::int32_t Destroy_ColIDLong() {
  return CallPlain(
      [] { return quillmere::workbook::Answer(quillmere::workbook::ClearNumberStore(NumberStore::kColumnIds)); });
}

XLL_EXPORT std::int32_t Destroy_RowIDString() {
  return CallPlain([] { return quillmere::workbook::Answer(quillmere::workbook::ClearTextStore()); });
}
