#include <windows.h>

#include "frame/entry/process_end.h"

/// In no header of the system's.
extern "C" NTSYSAPI BOOLEAN NTAPI RtlDllShutdownInProgress();

namespace quillmere {

bool ProcessEnds() noexcept { return RtlDllShutdownInProgress(); }

}  // namespace quillmere
