// What the library does when Windows loads and unloads it.
#pragma once

namespace quillmere {

/// Releases the records of all threads and the slots that hold them. Called once, when the library is unloaded from a
/// process that goes on.
void ReleaseThreadRecords() noexcept;

}  // namespace quillmere
