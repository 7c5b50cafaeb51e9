// While the host looks after the add-in's blocks of memory, or lets their allocation fail, each must be taken and freed
// for itself: the add-in finds here, among the program's exports, whether it may keep large ones for later.
#include "host/library/allocation.h"
#include "host/library/export.h"

// Called by name from outside.
#pragma GCC diagnostic ignored "-Wmissing-declarations"

/// 1 while blocks are watched, else 0.
QCALC_EXPORT int QcalcWatchesMemory() { return qcalc::AddinAllocations().WatchesBlocks() ? 1 : 0; }
