#include "frame/values/value_memory.h"

#include <algorithm>
#include <new>
#include <utility>

#include "frame/values/cell.h"
#include "frame/values/cell_copy.h"
#include "frame/values/kept_blocks.h"

namespace quillmere {

/// One block of text memory; the units follow.
struct alignas(16) TextChunk {
  TextChunk* next;
  std::size_t bytes;  ///< of the block
};

namespace {

/// What stands before the first cell of an array; as long as a cell, so that the cells keep the block's alignment.
struct alignas(16) ArrayHeader {
  TextChunk* chunks;
  std::size_t bytes;  ///< of the block
  std::byte padding[sizeof(XLOPER12) - sizeof(TextChunk*) - sizeof(std::size_t)];
};
static_assert(sizeof(ArrayHeader) == sizeof(XLOPER12));

ArrayHeader* HeaderOf(XLOPER12* cells) noexcept { return reinterpret_cast<ArrayHeader*>(cells) - 1; }

// The first chunk is small, since most arrays are; each further one is twice the one before, until a block is large
// enough that taking it costs nothing beside filling it.
constexpr std::size_t kFirstChunkUnits = 240;
constexpr std::size_t kLargestChunkUnits = std::size_t{1} << 19;

}  // namespace

void TextArena::AddChunk(std::size_t units) {
  chunkUnits_ = chunkUnits_ == 0 ? kFirstChunkUnits : std::min(chunkUnits_ * 2, kLargestChunkUnits);
  const std::size_t size = std::max(units, chunkUnits_);
  const MemoryBlock block = TakeBlock(sizeof(TextChunk) + size * sizeof(XCHAR));
  TextChunk* const chunk = ::new (block.memory) TextChunk{chunks_, block.bytes};
  chunks_ = chunk;
  next_ = reinterpret_cast<XCHAR*>(chunk + 1);
  end_ = next_ + size;
}

XLOPER12* AllocateArray(std::int64_t rows, std::int64_t columns) {
  const std::size_t bytes = sizeof(ArrayHeader) + static_cast<std::size_t>(rows * columns) * sizeof(XLOPER12);
  const MemoryBlock block = TakeBlock(bytes);
  ArrayHeader* const header = ::new (block.memory) ArrayHeader;
  header->chunks = nullptr;
  header->bytes = block.bytes;
  return reinterpret_cast<XLOPER12*>(header + 1);
}

void AttachChunks(XLOPER12* cells, TextChunk* chunks) noexcept { HeaderOf(cells)->chunks = chunks; }

void ReleaseArray(XLOPER12* cells) noexcept {
  if (cells == nullptr) return;
  ArrayHeader* const header = HeaderOf(cells);
  ReleaseChunks(header->chunks);
  GiveBlock({header, header->bytes});
}

void ReleaseChunks(TextChunk* chunks) noexcept {
  while (chunks != nullptr) {
    TextChunk* const next = chunks->next;
    GiveBlock({chunks, chunks->bytes});
    chunks = next;
  }
}

XCHAR* AllocateText(XStringView text) {
  if (text.size() > kXlMaxText) ThrowStringTooLong();
  struct Block {
    XCHAR* units;
    ~Block() { ::operator delete(units); }
  } block{static_cast<XCHAR*>(::operator new((text.size() + 1) * sizeof(XCHAR)))};
  CopyText(block.units, text.data(), text.size());
  return std::exchange(block.units, nullptr);
}

XLMREF12* AllocateAreas(std::uint16_t count) {
  const std::size_t bytes = offsetof(XLMREF12, reftbl) + std::max<std::size_t>(count, 1) * sizeof(XLREF12);
  XLMREF12* const areas = static_cast<XLMREF12*>(::operator new(bytes));
  areas->count = count;
  return areas;
}

void ReleaseOwned(XLOPER12& value) noexcept {
  if ((value.xltype & xlbitDLLFree) == 0) return;
  switch (TypeOf(value)) {
    case xltypeStr:
      ::operator delete(value.val.str);
      break;
    case xltypeMulti:
      ReleaseArray(value.val.array.lparray);
      break;
    case xltypeRef:
      ::operator delete(value.val.mref.lpmref);
      break;
    default:
      break;
  }
  value = EmptyCell();
}

}  // namespace quillmere
