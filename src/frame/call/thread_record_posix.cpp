#include <pthread.h>

#include <new>

#include "frame/call/thread_record.h"
#include "frame/entry/process_end.h"

namespace quillmere {
namespace {

/// A record in the chain of all records, so that those of threads still alive can be released at unload.
struct ChainedRecord : ThreadRecord {
  ChainedRecord* next = nullptr;
};

pthread_mutex_t chainLock = PTHREAD_MUTEX_INITIALIZER;
ChainedRecord* chain = nullptr;

void Link(ChainedRecord* record) noexcept {
  pthread_mutex_lock(&chainLock);
  record->next = chain;
  chain = record;
  pthread_mutex_unlock(&chainLock);
}

/// False when the record is gone already: the library is being unloaded.
bool Unlink(ChainedRecord* record) noexcept {
  pthread_mutex_lock(&chainLock);
  ChainedRecord** place = &chain;
  while (*place && *place != record) place = &(*place)->next;
  const bool found = *place != nullptr;
  if (found) *place = record->next;
  pthread_mutex_unlock(&chainLock);
  return found;
}

void ReleaseRecord(void* value) {
  auto* const record = static_cast<ChainedRecord*>(value);
  if (Unlink(record)) delete record;
}

struct RecordKey {
  pthread_key_t key{};
  bool valid = pthread_key_create(&key, &ReleaseRecord) == 0;

  RecordKey() = default;
  RecordKey(const RecordKey&) = delete;
  RecordKey& operator=(const RecordKey&) = delete;
  ~RecordKey() {
    if (!valid) return;
    pthread_key_delete(key);
    valid = false;
    while (ChainedRecord* const record = chain) ReleaseRecord(record);
  }
};
CUntilUnloaded<RecordKey> recordKey;

}  // namespace

ThreadRecord* ExistingThreadRecord() noexcept {
  return recordKey->valid ? static_cast<ChainedRecord*>(pthread_getspecific(recordKey->key)) : nullptr;
}

ThreadRecord* CurrentThreadRecord() noexcept {
  if (ThreadRecord* const existing = ExistingThreadRecord()) return existing;
  if (!recordKey->valid) return nullptr;
  auto* const record = new (std::nothrow) ChainedRecord;
  if (!record) return nullptr;
  if (pthread_setspecific(recordKey->key, record) != 0) {
    delete record;
    return nullptr;
  }
  Link(record);
  return record;
}

}  // namespace quillmere
