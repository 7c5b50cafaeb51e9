#include "host/library/block_table.h"

#include <cstdlib>

namespace qcalc {
namespace {

constexpr std::size_t kFirstCapacity = 1u << 10;

}  // namespace

std::size_t BlockTable::HomeOf(const void* address) const noexcept {
  constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15;
  return static_cast<std::size_t>((reinterpret_cast<std::uintptr_t>(address) * kMultiplier) >> 20) & (capacity_ - 1);
}

std::size_t BlockTable::Find(const void* address) const noexcept {
  std::size_t i = HomeOf(address);
  while (slots_[i].address && slots_[i].address != address) i = (i + 1) & (capacity_ - 1);
  return i;
}

bool BlockTable::Grow() noexcept {
  Slot* const old = slots_;
  const std::size_t oldCapacity = capacity_;
  const std::size_t capacity = oldCapacity ? oldCapacity * 2 : kFirstCapacity;
  auto* const slots = static_cast<Slot*>(std::calloc(capacity, sizeof(Slot)));
  if (!slots) return false;
  slots_ = slots;
  capacity_ = capacity;
  for (std::size_t i = 0; i < oldCapacity; ++i)
    if (old[i].address) slots_[Find(old[i].address)] = old[i];
  std::free(old);
  return true;
}

void BlockTable::Add(const void* address, const LiveBlock& block) noexcept {
  const Lock lock(busy_);
  if (2 * (size_ + 1) > capacity_ && !Grow()) return;
  Slot& slot = slots_[Find(address)];
  if (!slot.address) ++size_;
  slot = {address, block};
}

bool BlockTable::Remove(const void* address, LiveBlock& block) noexcept {
  const Lock lock(busy_);
  if (size_ == 0) return false;
  std::size_t hole = Find(address);
  if (!slots_[hole].address) return false;
  block = slots_[hole].block;
  --size_;
  // What was pushed on past the hole moves back into it, so that every search still ends at a free slot.
  for (std::size_t i = hole;;) {
    i = (i + 1) & (capacity_ - 1);
    if (!slots_[i].address) break;
    const std::size_t distance = (i - HomeOf(slots_[i].address)) & (capacity_ - 1);
    if (distance < ((i - hole) & (capacity_ - 1))) continue;
    slots_[hole] = slots_[i];
    hole = i;
  }
  slots_[hole].address = nullptr;
  return true;
}

bool BlockTable::Holds(const void* address) const noexcept {
  const Lock lock(busy_);
  return size_ > 0 && slots_[Find(address)].address;
}

void BlockTable::Clear() noexcept {
  const Lock lock(busy_);
  for (std::size_t i = 0; i < capacity_; ++i) slots_[i].address = nullptr;
  size_ = 0;
}

std::size_t BlockTable::Size() const noexcept {
  const Lock lock(busy_);
  return size_;
}

}  // namespace qcalc
