// The records are kept in a fiber-local slot, whose callback releases them when a thread ends and, by FlsFree, for all
// live threads when the library is unloaded. Objects with thread storage duration would keep the library from being
// unloaded at all. A plain thread-local slot beside it is what the calls read.
#include <windows.h>

#include <cstdlib>
#include <memory>
#include <new>

#include "frame/call/module_windows.h"
#include "frame/call/thread_record.h"
#include "frame/entry/process_end.h"

namespace quillmere {
namespace {

DWORD tlsSlot = TLS_OUT_OF_INDEXES;
DWORD flsSlot = FLS_OUT_OF_INDEXES;

// Not operator new, whose form without exceptions throws and catches one inside: throwing asks for the record.
ThreadRecord* NewRecord() noexcept {
  void* const memory = std::malloc(sizeof(ThreadRecord));
  return memory ? ::new (memory) ThreadRecord : nullptr;
}

void DeleteRecord(ThreadRecord* record) noexcept {
  std::destroy_at(record);
  std::free(record);
}

void WINAPI ReleaseRecord(void* record) {
  if (ProcessEnds()) return;
  TlsSetValue(tlsSlot, nullptr);
  DeleteRecord(static_cast<ThreadRecord*>(record));
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
  ThreadRecord* const record = NewRecord();
  if (!record) return nullptr;
  if (!FlsSetValue(flsSlot, record)) {
    DeleteRecord(record);
    return nullptr;
  }
  if (!TlsSetValue(tlsSlot, record)) {
    FlsSetValue(flsSlot, nullptr);
    DeleteRecord(record);
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
