// Asking for memory ahead of a walk through cells that follow each other.
#pragma once

#include <cstdint>

#include "xlcall/xlcall.h"

namespace quillmere::logic {

/// How far ahead: so far that a walk does not halt where a page ends, beyond which the processor does not look by
/// itself.
inline constexpr std::int64_t kCellsAhead = 256;

/// Asks for the cell that is to be read, or written, kCellsAhead cells after this one. Behind the last there is nothing
/// to ask for, and asking does no harm.
template <bool toWrite>
inline void PrefetchAhead(const XLOPER12* cell) noexcept {
  constexpr int kSecondCache = 2;
  // An address, since no pointer may lead out of its array.
  const std::uintptr_t ahead = reinterpret_cast<std::uintptr_t>(cell) + kCellsAhead * sizeof(XLOPER12);
  __builtin_prefetch(reinterpret_cast<const void*>(ahead), toWrite, kSecondCache);
}

}  // namespace quillmere::logic
