#include "workbook/stores_mutex.h"

#include "frame/entry/process_end.h"

namespace quillmere::workbook {
namespace {

CUntilUnloaded<CStoreMutex> mutex;

}  // namespace

CStoreMutex& StoresMutex() noexcept { return *mutex; }

}  // namespace quillmere::workbook
