// Blocks of memory by address, for the allocator's stand-ins.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <thread>

namespace qcalc {

/// A block that the add-in has allocated and not freed.
struct LiveBlock {
  std::size_t bytes = 0;
  std::uint64_t number = 0;  ///< of the allocation, counted from the start of the process
};

/// A hash table that any thread may use. It works before and after the program's static objects live, and takes no
/// lock of the system's, which the sanitizers would look at from within the allocator; nor does it wait for an atomic
/// word, since this C++ library may let a waiter miss the moment on Windows.
class BlockTable {
 public:
  /// Does nothing when there is no memory for it.
  void Add(const void* address, const LiveBlock& block) noexcept;

  /// Takes the address out. False, with `block` as it was, when it is not in.
  bool Remove(const void* address, LiveBlock& block) noexcept;

  bool Holds(const void* address) const noexcept;

  /// Takes all addresses out.
  void Clear() noexcept;

  std::size_t Size() const noexcept;

  /// Calls `visit` with every block. It must neither allocate nor free.
  template <typename Visitor>
  void Visit(const Visitor& visit) const {
    const Lock lock(busy_);
    for (std::size_t i = 0; i < capacity_; ++i)
      if (slots_[i].address) visit(slots_[i].block);
  }

 private:
  struct Slot {
    const void* address;
    LiveBlock block;
  };

  class Lock {
   public:
    explicit Lock(std::atomic_flag& busy) noexcept : busy_(busy) {
      while (busy_.test_and_set(std::memory_order_acquire)) std::this_thread::yield();
    }
    ~Lock() { busy_.clear(std::memory_order_release); }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

   private:
    std::atomic_flag& busy_;
  };

  std::size_t HomeOf(const void* address) const noexcept;
  /// Where the address is, or the free slot where it would be.
  std::size_t Find(const void* address) const noexcept;
  bool Grow() noexcept;

  mutable std::atomic_flag busy_;
  Slot* slots_ = nullptr;
  std::size_t capacity_ = 0;  // a power of two
  std::size_t size_ = 0;
};

}  // namespace qcalc
