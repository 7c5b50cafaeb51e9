#include "host/api/junk_block.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace qcalc {
namespace {

constexpr int kPoison = 0xDD;
constexpr int kGuard = 0xC3;

}  // namespace

void JunkBlock::Poison() { std::memset(data_, kPoison, size_); }

JunkBlock::JunkBlock(std::size_t bytes)
    : data_(static_cast<std::byte*>(::operator new(bytes + kGuardBytes))), size_(bytes) {
  std::memset(data_, kJunk, bytes);
  std::memset(data_ + bytes, kGuard, kGuardBytes);
}

JunkBlock::~JunkBlock() {
  if (!data_) return;
  Poison();
  ::operator delete(data_);
}

JunkBlock::JunkBlock(JunkBlock&& other) noexcept : data_(std::exchange(other.data_, nullptr)), size_(other.size_) {}

bool JunkBlock::IsGuardIntact() const {
  const std::span guard = Guarded().subspan(size_);
  return std::all_of(guard.begin(), guard.end(), [](std::byte byte) { return byte == std::byte{kGuard}; });
}

bool JunkBlock::IsPoisoned() const {
  return std::all_of(data_, data_ + size_, [](std::byte byte) { return byte == std::byte{kPoison}; });
}

}  // namespace qcalc
