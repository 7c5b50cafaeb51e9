// Hashing cells for the indexes of engines: cells that are equal have equal hashes.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#include "frame/text/text_block.h"
#include "frame/values/cell.h"

namespace quillmere {

/// Whether texts that differ by the case of A to Z alone are taken as equal.
enum class TextCase { kIgnored, kCounts };

/// Mixes two words into one, every bit of which hangs on all of theirs.
inline std::uint64_t MixHash(std::uint64_t a, std::uint64_t b) noexcept {
  __extension__ using Wide = unsigned __int128;
  const Wide product = static_cast<Wide>(a ^ 0x9E37'79B9'7F4A'7C15) * (b ^ 0xD6E8'FEB8'6659'FD93);
  return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

/// A text of fewer units than a block, in a register that each such text fills in its own way, its length given.
inline __m128i LoadShort(const XCHAR* text, std::size_t units) {
  if (units >= 4) return LoadEnds<4>(text, units);
  if (units >= 2) return LoadEnds<2>(text, units);
  return _mm_cvtsi32_si128(units == 0 ? 0 : *text);
}

template <TextCase textCase>
inline std::uint64_t HashBlock(__m128i block, std::uint64_t hash) {
  if constexpr (textCase == TextCase::kIgnored) block = FoldBlock(block);
  const auto low = static_cast<std::uint64_t>(_mm_cvtsi128_si64(block));
  const auto high = static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_unpackhi_epi64(block, block)));
  return MixHash(low ^ hash, high);
}

/// The hash of a text; no unit outside it is read. Inline: a million short texts are hashed in a call.
template <TextCase textCase>
inline std::uint64_t HashText(XStringView text) {
  const XCHAR* const units = text.data();
  const std::size_t count = text.size();
  std::uint64_t hash = MixHash(count, xltypeStr);
  if (count < kTextBlock) return HashBlock<textCase>(LoadShort(units, count), hash);
  for (std::size_t at = 0; at + kTextBlock < count; at += kTextBlock)
    hash = HashBlock<textCase>(LoadBlock(units + at), hash);
  // The last block may overlap the one before.
  return HashBlock<textCase>(LoadBlock(units + count - kTextBlock), hash);
}

inline std::uint64_t HashNumber(double number) noexcept {
  // The two zeros are equal.
  return MixHash(std::bit_cast<std::uint64_t>(number + 0.0), xltypeNum);
}

/// The hash of a single cell: equal for cells between which CompareOpers, with the case of texts as asked, gives 0.
/// That comparison takes a number that is not one for equal to all; it has no hash, callers look for it. What is no
/// single cell is "Bad XLOPER type".
template <TextCase textCase>
inline std::uint64_t HashCell(const XLOPER12& cell) {
  if (IsNumberCell(cell)) [[likely]]
    return HashNumber(cell.val.num);
  if (IsTextCell(cell)) return HashText<textCase>(TextOf(cell));
  const std::uint32_t type = CellType(cell);
  const bool hasValue = type == xltypeBool || type == xltypeErr || type == xltypeInt;
  return MixHash(hasValue ? static_cast<std::uint32_t>(cell.val.w) : 0, type);
}

}  // namespace quillmere
