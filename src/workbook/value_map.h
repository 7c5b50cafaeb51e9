// Values under text keys, for any number of threads that read and write at once and never wait for each other.
//
// The keys stand in a hash trie (Bagwell, "Ideal Hash Trees", 2001) which only ever grows, each node by one
// compare-and-swap, so that who walks it meets whole nodes. A value is replaced by one exchange. One that was replaced
// may still be read by others: who reads marks it before, and what is marked is freed later (Michael, "Hazard Pointers:
// Safe Memory Reclamation for Lock-Free Objects", 2004).
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "frame/values/xl_oper.h"
#include "xlcall/xchar.h"

namespace quillmere::workbook {

class ValueMap {
 public:
  /// A value that is kept, or that was and is still to be freed.
  struct Kept {
    explicit Kept(CXlOper&& owned) noexcept : value(std::move(owned)) {}

    CXlOper value;         ///< owns all it points to
    Kept* next = nullptr;  ///< of those to be freed
  };

  /// What is kept under one key. It lives as long as the map.
  class Entry;

  constexpr ValueMap() noexcept = default;
  ValueMap(const ValueMap&) = delete;
  ValueMap& operator=(const ValueMap&) = delete;
  /// No other thread may be inside.
  ~ValueMap();

  // On any thread, whatever others do meanwhile.

  /// A copy of what is kept under a key; never set when there is nothing. std::bad_alloc.
  CXlOper Read(XStringView key);
  /// The entry of a key, made when there is none: nothing is kept in it then. std::bad_alloc.
  Entry& EntryOf(XStringView key);
  /// Puts a value into an entry and returns the one that was there, null for none, which Retire takes.
  static Kept* Exchange(Entry& entry, std::unique_ptr<Kept> kept) noexcept;
  /// Frees a value that was taken out, or leaves it to a later call while somebody reads it. Null is nothing.
  void Retire(Kept* kept) noexcept;
  /// Takes all values out. The keys stay, as long as the map.
  void Clear() noexcept;

 private:
  struct Node {
    explicit constexpr Node(bool entry) noexcept : isEntry(entry) {}
    const bool isEntry;
  };
  struct Branch;
  class Reading;

  /// A value that is being read. One each to a line of the cache: the threads do not hinder each other.
  struct alignas(64) Mark {
    std::atomic<const Kept*> kept{nullptr};
    std::atomic<bool> isTaken{false};
  };
  /// Excel has no more calculation threads.
  static constexpr std::size_t kMarks = 1024;

  static constexpr int kBitsPerLevel = 6;
  static constexpr std::size_t kSlots = std::size_t{1} << kBitsPerLevel;

  struct Branch : Node {
    constexpr Branch() noexcept : Node(false) {}
    /// The place of a hash in a branch `level` below the root.
    std::atomic<Node*>& SlotOf(std::uint64_t hash, int level) noexcept {
      return slots[(hash >> (level * kBitsPerLevel)) % kSlots];
    }
    std::array<std::atomic<Node*>, kSlots> slots{};
  };

  Entry* Find(XStringView key, std::uint64_t hash) noexcept;
  Mark& TakeMark() noexcept;
  bool IsMarked(const Kept* kept) const noexcept;
  void PutToRetired(Kept* kept) noexcept;
  void FreeRetired() noexcept;
  template <class Visit>
  static void VisitEntries(Branch& branch, const Visit& visit) noexcept;
  static void DeleteNodes(Branch& branch) noexcept;

  Branch root_;
  std::array<Mark, kMarks> marks_{};
  std::atomic<std::size_t> marksUsed_{0};  ///< no mark from here on was ever taken
  std::atomic<Kept*> retired_{nullptr};
};

}  // namespace quillmere::workbook
