// Memory behind the values that the add-in owns: counted texts, lists of areas, and arrays.
//
// An array is one block: a hidden header, then the cells. Its texts stand in an arena, a chain of chunks that hangs on
// the header, so that an array of a million texts takes and frees a few dozen blocks.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/errors/exceptions.h"
#include "xlcall/xlcall.h"

namespace quillmere {

struct TextChunk;

/// Where the texts of one array are put. It owns nothing: ReleaseArray frees the chunks.
class TextArena {
 public:
  TextArena() noexcept = default;
  TextArena(const TextArena&) = delete;
  TextArena& operator=(const TextArena&) = delete;

  /// Room for a counted text of `units` units: units + 1 to be written, the length first.
  XCHAR* Allocate(std::size_t units) {
    const std::size_t wanted = units + 1;
    if (static_cast<std::size_t>(end_ - next_) < wanted) [[unlikely]]
      AddChunk(wanted);
    XCHAR* const text = next_;
    next_ += wanted;
    return text;
  }

 private:
  friend class CXlArrayBuilder;
  void AddChunk(std::size_t units);

  XCHAR* next_ = nullptr;
  XCHAR* end_ = nullptr;
  TextChunk* chunks_ = nullptr;
  std::size_t chunkUnits_ = 0;
};

/// The cells of a new array, unset; std::bad_alloc. The counts are within Excel's limits.
XLOPER12* AllocateArray(std::int64_t rows, std::int64_t columns);
/// Hangs the arena's chunks on the array, whose release then frees them.
void AttachChunks(XLOPER12* cells, TextChunk* chunks) noexcept;
/// Frees the array and its texts. `cells` comes from AllocateArray, or is null.
void ReleaseArray(XLOPER12* cells) noexcept;
void ReleaseChunks(TextChunk* chunks) noexcept;

/// A counted copy of `text`; CXlStringTooLongException above 32,767 units.
XCHAR* AllocateText(XStringView text);
/// A list with room for `count` areas, its count set.
XLMREF12* AllocateAreas(std::uint16_t count);

/// Frees what a value made by the add-in points to and leaves an empty cell without ownership bits, so that a second
/// release does nothing. A value that is not marked xlbitDLLFree is left alone.
void ReleaseOwned(XLOPER12& value) noexcept;

}  // namespace quillmere
