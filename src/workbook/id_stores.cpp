#include "workbook/id_stores.h"

#include <atomic>
#include <functional>
#include <unordered_map>

#include "frame/entry/process_end.h"
#include "table/cell_hash.h"
#include "workbook/stores_mutex.h"

namespace quillmere::workbook {
namespace {

/// Texts are looked up by views, without a string being made.
using TextMap = std::unordered_map<XString, std::int32_t, TextHash<TextCase::kCounts>, std::equal_to<>>;
using NumberMap = std::unordered_map<std::int32_t, std::int32_t>;

/// One map and the number of its entries. Everything but Count is called with the lock held.
template <class Map>
class Store {
 public:
  std::uint32_t Count() const noexcept { return count_.load(std::memory_order_relaxed); }

  template <class Key>
  std::optional<std::int32_t> Find(const Key& key) const {
    const auto found = entries_.find(key);
    return found == entries_.end() ? std::nullopt : std::optional(found->second);
  }

  template <class Key>
  void Put(const Key& key, std::int32_t number) {
    if (const auto found = entries_.find(key); found != entries_.end()) {
      found->second = number;
      return;
    }
    entries_.emplace(key, number);
    NoteCount();
  }

  template <class Key>
  bool Erase(const Key& key) {
    const auto found = entries_.find(key);
    if (found == entries_.end()) return false;
    entries_.erase(found);
    NoteCount();
    return true;
  }

  void Swap(Map& other) noexcept {
    entries_.swap(other);
    NoteCount();
  }

  std::vector<std::pair<typename Map::key_type, std::int32_t>> Entries() const {
    return {entries_.begin(), entries_.end()};
  }

 private:
  void NoteCount() noexcept { count_.store(static_cast<std::uint32_t>(entries_.size()), std::memory_order_relaxed); }

  Map entries_;
  std::atomic<std::uint32_t> count_{0};
};

/// They take no memory before their first entry.
struct IdStores {
  Store<TextMap> rowTexts;
  Store<NumberMap> rowNumbers;
  Store<NumberMap> columnNumbers;
};
CUntilUnloaded<IdStores> stores;

Store<NumberMap>& StoreOf(NumberStore store) noexcept {
  return store == NumberStore::kRowIds ? stores->rowNumbers : stores->columnNumbers;
}

template <class Map, class Key>
std::optional<std::int32_t> FindIn(const Store<Map>& store, const Key& key) {
  const CStoreLock lock(StoresMutex());
  return store.Find(key);
}

template <class Map, class Key>
bool PutInto(Store<Map>& store, const Key& key, std::int32_t number) {
  const CStoreLock lock(StoresMutex(), kStoreWait);
  if (!lock.HoldsLock()) return false;
  store.Put(key, number);
  return true;
}

template <class Map>
bool Clear(Store<Map>& store) {
  Map emptied;  // freed when the lock has been given back: that may take longer than others wait for it
  const CStoreLock lock(StoresMutex(), kDestroyWait);
  if (!lock.HoldsLock()) return false;
  store.Swap(emptied);
  return true;
}

}  // namespace

std::optional<std::int32_t> FindRowId(XStringView key) { return FindIn(stores->rowTexts, key); }

bool StoreRowId(XStringView key, std::int32_t number) { return PutInto(stores->rowTexts, key, number); }

bool EraseRowId(XStringView key) {
  const CStoreLock lock(StoresMutex(), kStoreWait);
  return lock.HoldsLock() && stores->rowTexts.Erase(key);
}

std::vector<std::pair<XString, std::int32_t>> TextStoreEntries() {
  const CStoreLock lock(StoresMutex());
  return stores->rowTexts.Entries();
}

std::optional<std::int32_t> FindId(NumberStore store, std::int32_t key) { return FindIn(StoreOf(store), key); }

bool StoreId(NumberStore store, std::int32_t key, std::int32_t number) { return PutInto(StoreOf(store), key, number); }

std::optional<std::vector<std::pair<std::int32_t, std::int32_t>>> NumberStoreEntries(NumberStore store) {
  const CStoreLock lock(StoresMutex(), kStoreWait);
  if (!lock.HoldsLock()) return std::nullopt;
  return StoreOf(store).Entries();
}

std::uint32_t TextStoreCount() noexcept { return stores->rowTexts.Count(); }

std::uint32_t NumberStoreCount(NumberStore store) noexcept { return StoreOf(store).Count(); }

bool ClearTextStore() { return Clear(stores->rowTexts); }

bool ClearNumberStore(NumberStore store) { return Clear(StoreOf(store)); }

}  // namespace quillmere::workbook
