// What the frame knows by interfaces alone, put together.
#pragma once

namespace quillmere {

/// Hands the frame all that other rooms bring: who tells a sheet's used rows. Once, before Excel calls anything.
void WireTheFrame() noexcept;

}  // namespace quillmere
