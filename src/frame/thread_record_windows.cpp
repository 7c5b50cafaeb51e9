// The records are kept in a fiber-local slot, whose callback releases them when a thread ends and, by FlsFree, for all
// live threads when the library is unloaded. Objects with thread storage duration would keep the library from being
// unloaded at all. A plain thread-local slot beside it is what the calls read.
#include <windows.h>

#include <new>

#include "frame/module_windows.h"
#include "frame/thread_record.h"

namespace quillmere {
namespace {

DWORD tlsSlot = TLS_OUT_OF_INDEXES;
DWORD flsSlot = FLS_OUT_OF_INDEXES;

void WINAPI ReleaseRecord(void* record) {
  TlsSetValue(tlsSlot, nullptr);
  delete static_cast<ThreadRecord*>(record);
}

struct ThreadSlots {
  ThreadSlots() noexcept {
    tlsSlot = TlsAlloc();
    flsSlot = FlsAlloc(&ReleaseRecord);
  }
};
const ThreadSlots threadSlots;

}  // namespace

ThreadRecord* ExistingThreadRecord() noexcept { return static_cast<ThreadRecord*>(TlsGetValue(tlsSlot)); }

ThreadRecord* CurrentThreadRecord() noexcept {
  if (ThreadRecord* const existing = ExistingThreadRecord()) return existing;
  if (tlsSlot == TLS_OUT_OF_INDEXES || flsSlot == FLS_OUT_OF_INDEXES) return nullptr;
  auto* const record = new (std::nothrow) ThreadRecord;
  if (!record) return nullptr;
  if (!FlsSetValue(flsSlot, record)) {
    delete record;
    return nullptr;
  }
  if (!TlsSetValue(tlsSlot, record)) {
    FlsSetValue(flsSlot, nullptr);
    delete record;
    return nullptr;
  }
  return record;
}

void ReleaseThreadRecords() noexcept {
  if (flsSlot != FLS_OUT_OF_INDEXES) FlsFree(flsSlot);
  if (tlsSlot != TLS_OUT_OF_INDEXES) TlsFree(tlsSlot);
  flsSlot = FLS_OUT_OF_INDEXES;
  tlsSlot = TLS_OUT_OF_INDEXES;
}

}  // namespace quillmere
