#include <windows.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <cwchar>

#include "host/library/allocation.h"
#include "host/library/import_table_windows.h"

namespace qcalc {
namespace {

void NoteTaken(const void* block, std::size_t bytes) {
  AddinAllocations().NoteTaken(block, bytes);
  AddinBlocks().Add(block, bytes, GetCurrentThreadId());
}

/// Whether the host keeps account of the block.
bool NoteFreed(const void* block) {
  AddinBlocks().Forget(block);
  return AddinAllocations().NoteFreed(block);
}

/// Takes a block from `allocate`, as the add-in's; null when it has to fail.
template <typename Allocate>
void* Take(std::size_t bytes, const Allocate& allocate) {
  if (AddinAllocations().MustFail()) return nullptr;
  void* const block = allocate();
  NoteTaken(block, bytes);
  return block;
}

/// Moves a block by `reallocate`; null, with the block as it was, when that has to fail.
template <typename Reallocate>
void* Move(void* block, std::size_t bytes, const Reallocate& reallocate) {
  if (AddinAllocations().MustFail()) return nullptr;
  const bool wasKnown = NoteFreed(block);
  void* const moved = reallocate();
  if (wasKnown || !block) NoteTaken(moved, bytes);
  return moved;
}

void* WithErrno(void* block) {
  if (!block) errno = ENOMEM;
  return block;
}

void* MeteredMalloc(std::size_t bytes) {
  return WithErrno(Take(bytes, [&] { return std::malloc(bytes); }));
}

void* MeteredCalloc(std::size_t count, std::size_t bytes) {
  return WithErrno(Take(count * bytes, [&] { return std::calloc(count, bytes); }));
}

void* MeteredRealloc(void* block, std::size_t bytes) {
  return WithErrno(Move(block, bytes, [&] { return std::realloc(block, bytes); }));
}

void MeteredFree(void* block) {
  NoteFreed(block);
  std::free(block);
}

char* MeteredStrdup(const char* text) {
  const std::size_t bytes = std::strlen(text) + 1;
  void* const copy = MeteredMalloc(bytes);
  return copy ? static_cast<char*>(std::memcpy(copy, text, bytes)) : nullptr;
}

wchar_t* MeteredWcsdup(const wchar_t* text) {
  const std::size_t bytes = (std::wcslen(text) + 1) * sizeof(wchar_t);
  void* const copy = MeteredMalloc(bytes);
  return copy ? static_cast<wchar_t*>(std::memcpy(copy, text, bytes)) : nullptr;
}

void* WINAPI MeteredHeapAlloc(HANDLE heap, DWORD flags, SIZE_T bytes) {
  return Take(bytes, [&] { return HeapAlloc(heap, flags, bytes); });
}

void* WINAPI MeteredHeapReAlloc(HANDLE heap, DWORD flags, void* block, SIZE_T bytes) {
  return Move(block, bytes, [&] { return HeapReAlloc(heap, flags, block, bytes); });
}

BOOL WINAPI MeteredHeapFree(HANDLE heap, DWORD flags, void* block) {
  NoteFreed(block);
  return HeapFree(heap, flags, block);
}

}  // namespace

RunningCode::Owner RunningCode::Exchange(Owner) noexcept { return Owner::kHost; }

std::optional<std::size_t> RecentBlockBytes(const void* address) noexcept {
  return AddinBlocks().BytesOf(address, GetCurrentThreadId());
}

void MeterAllocations(const Library& library) {
  const ImportPatch patches[] = {
      {"malloc", reinterpret_cast<void*>(&MeteredMalloc)},
      {"calloc", reinterpret_cast<void*>(&MeteredCalloc)},
      {"realloc", reinterpret_cast<void*>(&MeteredRealloc)},
      {"free", reinterpret_cast<void*>(&MeteredFree)},
      {"_strdup", reinterpret_cast<void*>(&MeteredStrdup)},
      {"_wcsdup", reinterpret_cast<void*>(&MeteredWcsdup)},
      {"HeapAlloc", reinterpret_cast<void*>(&MeteredHeapAlloc)},
      {"HeapReAlloc", reinterpret_cast<void*>(&MeteredHeapReAlloc)},
      {"HeapFree", reinterpret_cast<void*>(&MeteredHeapFree)},
  };
  PatchImports(library, patches);
}

}  // namespace qcalc
