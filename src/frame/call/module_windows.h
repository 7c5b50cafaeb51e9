// What the library does when Windows loads and unloads it.
#pragma once

namespace quillmere {

/// Sets what brings faults of the processor home: called once, when the library is loaded, and undone when it is
/// unloaded.
void InstallFaultHandling() noexcept;
void RemoveFaultHandling() noexcept;

/// Releases the records of all threads and the slots that hold them. Called once, when the library is unloaded from a
/// process that goes on.
void ReleaseThreadRecords() noexcept;

}  // namespace quillmere
