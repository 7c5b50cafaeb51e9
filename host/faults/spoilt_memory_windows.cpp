#include <windows.h>

#include <cstring>
#include <new>
#include <utility>

#include "host/api/junk_block.h"
#include "host/faults/spoilt_memory.h"

namespace qcalc {
namespace {

constexpr std::size_t kPage = 4096;

std::size_t PagesFor(std::size_t bytes) { return (bytes + kPage - 1) / kPage; }

}  // namespace

SpoiltMemory::SpoiltMemory(std::size_t bytes) : data_(nullptr), size_(bytes) {
  const std::size_t readable = PagesFor(bytes) * kPage;
  auto* region =
      static_cast<std::byte*>(VirtualAlloc(nullptr, readable + kPage, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
  if (!region) throw std::bad_alloc();
  DWORD before = 0;
  VirtualProtect(region + readable, kPage, PAGE_NOACCESS, &before);
  data_ = region + readable - bytes;
  std::memset(data_, kJunk, bytes);
}

SpoiltMemory::~SpoiltMemory() {
  if (data_) VirtualFree(data_ + size_ - PagesFor(size_) * kPage, 0, MEM_RELEASE);
}

SpoiltMemory::SpoiltMemory(SpoiltMemory&& other) noexcept
    : data_(std::exchange(other.data_, nullptr)), size_(other.size_) {}

void* SpoiltMemory::Unreadable() const { return data_ + size_; }

bool CanRead(const void* address, std::size_t bytes) {
  const auto* next = static_cast<const std::byte*>(address);
  const auto* const end = next + bytes;
  while (next < end) {
    MEMORY_BASIC_INFORMATION region;
    if (!VirtualQuery(next, &region, sizeof region)) return false;
    if (region.State != MEM_COMMIT || (region.Protect & (PAGE_NOACCESS | PAGE_GUARD))) return false;
    next = static_cast<const std::byte*>(region.BaseAddress) + region.RegionSize;
  }
  return true;
}

}  // namespace qcalc
