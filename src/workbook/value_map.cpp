#include "workbook/value_map.h"

#include <algorithm>
#include <utility>

#include "table/cell_hash.h"

namespace quillmere::workbook {

class ValueMap::Entry : public Node {
 public:
  Entry(XStringView key, std::uint64_t hash) : Node(true), key_(key), hash_(hash) {}

  bool Has(XStringView key, std::uint64_t hash) const noexcept { return hash_ == hash && key_ == key; }
  std::uint64_t Hash() const noexcept { return hash_; }

  std::atomic<Kept*> kept{nullptr};
  std::atomic<Entry*> next{nullptr};  ///< another of the same hash

 private:
  const XString key_;
  const std::uint64_t hash_;
};

/// Marks what is read while it lives.
class ValueMap::Reading {
 public:
  explicit Reading(ValueMap& map) noexcept : map_(map), mark_(map.TakeMark()) {}
  Reading(const Reading&) = delete;
  Reading& operator=(const Reading&) = delete;
  ~Reading() {
    mark_.kept.store(nullptr);
    mark_.isTaken.store(false, std::memory_order_release);
    if (map_.retired_.load() != nullptr) map_.FreeRetired();
  }

  /// What an entry holds, marked: it stands until this ends.
  const Kept* Of(const Entry& entry) noexcept {
    const Kept* seen = entry.kept.load();
    for (;;) {
      mark_.kept.store(seen);
      // Who took it out before it was marked did not find the mark.
      const Kept* const still = entry.kept.load();
      if (still == seen) return seen;
      seen = still;
    }
  }

 private:
  ValueMap& map_;
  Mark& mark_;
};

namespace {

std::uint64_t HashOf(XStringView key) { return HashText<TextCase::kCounts>(key, HashKey::OfProcess()); }

/// Where to look for a mark first. Threads have stacks of their own, so each soon has a mark of its own.
std::size_t FirstMark() noexcept {
  constexpr std::uintptr_t kStackBits = 16;
  constexpr std::uint64_t kSpread = 0x9E37'79B9'7F4A'7C15;
  constexpr int kFirstMarkBits = 4;
  const char onStack = 0;
  return ((reinterpret_cast<std::uintptr_t>(&onStack) >> kStackBits) * kSpread) >> (64 - kFirstMarkBits);
}

}  // namespace

ValueMap::~ValueMap() {
  Clear();
  FreeRetired();
  DeleteNodes(root_);
}

CXlOper ValueMap::Read(XStringView key) {
  const Entry* const entry = Find(key, HashOf(key));
  if (!entry) return {};
  Reading reading(*this);
  const Kept* const kept = reading.Of(*entry);
  return kept ? kept->value.Clone() : CXlOper();
}

ValueMap::Entry* ValueMap::Find(XStringView key, std::uint64_t hash) noexcept {
  Node* node = root_.SlotOf(hash, 0).load(std::memory_order_acquire);
  for (int level = 1; node && !node->isEntry; ++level)
    node = static_cast<Branch*>(node)->SlotOf(hash, level).load(std::memory_order_acquire);
  Entry* entry = static_cast<Entry*>(node);
  while (entry && !entry->Has(key, hash)) entry = entry->next.load(std::memory_order_acquire);
  return entry;
}

ValueMap::Entry& ValueMap::EntryOf(XStringView key) {
  const std::uint64_t hash = HashOf(key);
  if (Entry* const known = Find(key, hash)) return *known;
  auto added = std::make_unique<Entry>(key, hash);
  std::atomic<Node*>* slot = &root_.SlotOf(hash, 0);
  for (int level = 0;;) {
    Node* node = slot->load(std::memory_order_acquire);
    if (!node) {
      if (slot->compare_exchange_strong(node, added.get())) return *added.release();
    } else if (!node->isEntry) {
      slot = &static_cast<Branch*>(node)->SlotOf(hash, ++level);
    } else if (Entry* entry = static_cast<Entry*>(node); entry->Hash() != hash) {
      // Two hashes that agree so far: a branch parts them further down, before their bits are used up.
      auto branch = std::make_unique<Branch>();
      branch->SlotOf(entry->Hash(), level + 1).store(entry, std::memory_order_relaxed);
      if (slot->compare_exchange_strong(node, branch.get())) branch.release();
    } else {
      for (;;) {
        if (entry->Has(key, hash)) return *entry;
        Entry* next = nullptr;
        if (entry->next.compare_exchange_strong(next, added.get())) return *added.release();
        entry = next;
      }
    }
  }
}

ValueMap::Kept* ValueMap::Exchange(Entry& entry, std::unique_ptr<Kept> kept) noexcept {
  return entry.kept.exchange(kept.release());
}

void ValueMap::Retire(Kept* kept) noexcept {
  if (!kept) return;
  PutToRetired(kept);
  FreeRetired();
}

void ValueMap::Clear() noexcept {
  VisitEntries(root_, [this](Entry& entry) { Retire(entry.kept.exchange(nullptr)); });
}

ValueMap::Mark& ValueMap::TakeMark() noexcept {
  for (std::size_t at = FirstMark();; at = (at + 1) % kMarks) {
    Mark& mark = marks_[at];
    if (mark.isTaken.load(std::memory_order_relaxed) || mark.isTaken.exchange(true)) continue;
    std::size_t used = marksUsed_.load();
    while (used <= at && !marksUsed_.compare_exchange_weak(used, at + 1)) continue;
    return mark;
  }
}

bool ValueMap::IsMarked(const Kept* kept) const noexcept {
  const auto end = marks_.begin() + static_cast<std::ptrdiff_t>(marksUsed_.load());
  return std::any_of(marks_.begin(), end, [kept](const Mark& mark) { return mark.kept.load() == kept; });
}

void ValueMap::PutToRetired(Kept* kept) noexcept {
  kept->next = retired_.load();
  while (!retired_.compare_exchange_weak(kept->next, kept)) continue;
}

void ValueMap::FreeRetired() noexcept {
  // Taken as a whole: no other thread frees or links them meanwhile.
  Kept* kept = retired_.exchange(nullptr);
  while (kept) {
    Kept* const next = kept->next;
    if (IsMarked(kept))
      PutToRetired(kept);
    else
      delete kept;
    kept = next;
  }
}

template <class Visit>
void ValueMap::VisitEntries(Branch& branch, const Visit& visit) noexcept {
  for (std::atomic<Node*>& slot : branch.slots) {
    Node* const node = slot.load(std::memory_order_acquire);
    if (!node) continue;
    if (!node->isEntry) {
      VisitEntries(*static_cast<Branch*>(node), visit);
      continue;
    }
    for (Entry* entry = static_cast<Entry*>(node); entry; entry = entry->next.load(std::memory_order_acquire))
      visit(*entry);
  }
}

void ValueMap::DeleteNodes(Branch& branch) noexcept {
  for (std::atomic<Node*>& slot : branch.slots) {
    Node* const node = slot.load();
    if (!node) continue;
    if (!node->isEntry) {
      DeleteNodes(*static_cast<Branch*>(node));
      delete static_cast<Branch*>(node);
      continue;
    }
    for (Entry* entry = static_cast<Entry*>(node); entry;) delete std::exchange(entry, entry->next.load());
  }
}

}  // namespace quillmere::workbook
