#include <cstring>
#include <new>
#include <utility>

#include "host/api/junk_block.h"
#include "host/faults/spoilt_memory.h"

namespace qcalc {

SpoiltMemory::SpoiltMemory(std::size_t bytes) : data_(static_cast<std::byte*>(::operator new(bytes))), size_(bytes) {
  std::memset(data_, kJunk, bytes);
}

SpoiltMemory::~SpoiltMemory() { ::operator delete(data_); }

SpoiltMemory::SpoiltMemory(SpoiltMemory&& other) noexcept
    : data_(std::exchange(other.data_, nullptr)), size_(other.size_) {}

void* SpoiltMemory::Unreadable() const { return nullptr; }

bool CanRead(const void*, std::size_t) { return true; }

}  // namespace qcalc
