// The one lock of the process-wide stores: those of IDs and the formula memory.
#pragma once

#include "frame/call/store_lock.h"

namespace quillmere::workbook {

/// To be taken through CStoreLock.
CStoreMutex& StoresMutex() noexcept;

}  // namespace quillmere::workbook
