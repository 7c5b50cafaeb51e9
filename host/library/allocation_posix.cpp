#include <dlfcn.h>

#include <cerrno>
#include <cstdlib>
#include <new>

#include "host/library/allocation.h"

// The sanitizers' allocator where the program is built with one, and the C library's.
extern "C" {
__attribute__((weak)) void* __interceptor_malloc(std::size_t);
__attribute__((weak)) void* __interceptor_calloc(std::size_t, std::size_t);
__attribute__((weak)) void* __interceptor_realloc(void*, std::size_t);
__attribute__((weak)) void __interceptor_free(void*);
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);
void __libc_free(void*);
}

namespace qcalc {
namespace {

// The program's own thread-local data, which needs no memory at first use.
thread_local RunningCode::Owner running = RunningCode::Owner::kHost;
// Whether this thread is in a stand-in already: what that allocates in turn goes straight to the system.
thread_local bool isPassing = false;

/// A number of its own for each thread.
std::uintptr_t OwnThread() noexcept { return reinterpret_cast<std::uintptr_t>(&isPassing); }

class Passing {
 public:
  Passing() noexcept { isPassing = true; }
  ~Passing() { isPassing = false; }
  Passing(const Passing&) = delete;
  Passing& operator=(const Passing&) = delete;
};

/// Whether the allocation that is asked for is the add-in's.
bool IsAddins() noexcept { return running == RunningCode::Owner::kAddin && !isPassing; }

void Remember(const void* block, std::size_t bytes) noexcept {
  AddinAllocations().NoteTaken(block, bytes);
  AddinBlocks().Add(block, bytes, OwnThread());
}

/// Takes a block from `allocate`, as the add-in's; null when it has to fail.
template <typename Allocate>
void* TakeForAddin(std::size_t bytes, const Allocate& allocate) {
  const Passing passing;
  if (AddinAllocations().MustFail()) {
    errno = ENOMEM;
    return nullptr;
  }
  void* const block = allocate();
  Remember(block, bytes);
  return block;
}

/// Whoever runs: a block of the add-in's may be freed by a thread's end.
void NoteFreed(void* block) noexcept {
  AddinBlocks().Forget(block);
  if (isPassing || !AddinAllocations().WantsFreed()) return;
  const Passing passing;
  AddinAllocations().NoteFreed(block);
}

/// The function of that mangled name behind the program's own.
template <typename Function>
Function Next(const char* name) {
  return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

void* SystemMalloc(std::size_t bytes) noexcept {
  return __interceptor_malloc ? __interceptor_malloc(bytes) : __libc_malloc(bytes);
}

void* SystemRealloc(void* block, std::size_t bytes) noexcept {
  return __interceptor_realloc ? __interceptor_realloc(block, bytes) : __libc_realloc(block, bytes);
}

template <typename Allocate>
void* NewBlock(std::size_t bytes, const Allocate& allocate) {
  if (!IsAddins()) return allocate();
  void* const block = TakeForAddin(bytes, allocate);
  if (!block) throw std::bad_alloc();
  return block;
}

}  // namespace

RunningCode::Owner RunningCode::Exchange(Owner owner) noexcept {
  const Owner before = running;
  running = owner;
  return before;
}

std::optional<std::size_t> RecentBlockBytes(const void* address) noexcept {
  return AddinBlocks().BytesOf(address, OwnThread());
}

// The library finds the functions below among the program's symbols, before the system's.
void MeterAllocations(const Library&) {}

}  // namespace qcalc

using qcalc::IsAddins;
using qcalc::NewBlock;
using qcalc::Next;
using qcalc::NoteFreed;
using qcalc::TakeForAddin;

extern "C" {

void* malloc(std::size_t bytes) noexcept {
  if (!IsAddins()) return qcalc::SystemMalloc(bytes);
  return TakeForAddin(bytes, [&] { return qcalc::SystemMalloc(bytes); });
}

void* calloc(std::size_t count, std::size_t bytes) noexcept {
  const auto allocate = [&] {
    return __interceptor_calloc ? __interceptor_calloc(count, bytes) : __libc_calloc(count, bytes);
  };
  return IsAddins() ? TakeForAddin(count * bytes, allocate) : allocate();
}

void* realloc(void* block, std::size_t bytes) noexcept {
  if (!IsAddins()) return qcalc::SystemRealloc(block, bytes);
  if (!block) return malloc(bytes);
  const qcalc::Passing passing;
  qcalc::AllocationMeter& meter = qcalc::AddinAllocations();
  if (meter.MustFail()) {
    errno = ENOMEM;
    return nullptr;
  }
  const bool wasKnown = meter.NoteFreed(block);
  const bool wasRecent = qcalc::AddinBlocks().Forget(block);
  void* const moved = qcalc::SystemRealloc(block, bytes);
  if (wasKnown) meter.NoteTaken(moved, bytes);
  if (wasRecent) qcalc::AddinBlocks().Add(moved, bytes, qcalc::OwnThread());
  return moved;
}

void free(void* block) noexcept {
  NoteFreed(block);
  if (__interceptor_free)
    __interceptor_free(block);
  else
    __libc_free(block);
}
}

// The sanitizers tell what came from operator new from what came from malloc, so each goes to the operator it names.

void* operator new(std::size_t bytes) {
  static const auto next = Next<void* (*)(std::size_t)>("_Znwm");
  return NewBlock(bytes, [&] { return next(bytes); });
}

void* operator new[](std::size_t bytes) {
  static const auto next = Next<void* (*)(std::size_t)>("_Znam");
  return NewBlock(bytes, [&] { return next(bytes); });
}

void* operator new(std::size_t bytes, const std::nothrow_t& tag) noexcept {
  static const auto next = Next<void* (*)(std::size_t, const std::nothrow_t&)>("_ZnwmRKSt9nothrow_t");
  return IsAddins() ? TakeForAddin(bytes, [&] { return next(bytes, tag); }) : next(bytes, tag);
}

void* operator new[](std::size_t bytes, const std::nothrow_t& tag) noexcept {
  static const auto next = Next<void* (*)(std::size_t, const std::nothrow_t&)>("_ZnamRKSt9nothrow_t");
  return IsAddins() ? TakeForAddin(bytes, [&] { return next(bytes, tag); }) : next(bytes, tag);
}

void operator delete(void* block) noexcept {
  static const auto next = Next<void (*)(void*)>("_ZdlPv");
  NoteFreed(block);
  next(block);
}

void operator delete[](void* block) noexcept {
  static const auto next = Next<void (*)(void*)>("_ZdaPv");
  NoteFreed(block);
  next(block);
}

void operator delete(void* block, std::size_t bytes) noexcept {
  static const auto next = Next<void (*)(void*, std::size_t)>("_ZdlPvm");
  NoteFreed(block);
  next(block, bytes);
}

void operator delete[](void* block, std::size_t bytes) noexcept {
  static const auto next = Next<void (*)(void*, std::size_t)>("_ZdaPvm");
  NoteFreed(block);
  next(block, bytes);
}
