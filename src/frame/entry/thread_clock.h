// The processor time of a thread, for bounds on work that do not depend on what else the machine does.
#pragma once

#include <cstdint>

namespace quillmere {

/// Microseconds of processor time that the calling thread has used, up to some ten thousand apart; 0 where the system
/// does not tell. Asking may take as long as 50 microseconds.
std::uint64_t ThreadTime() noexcept;

}  // namespace quillmere
