// Hashing cells for the indexes of engines: cells that are equal have equal hashes.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#include "frame/text/text_block.h"
#include "frame/values/cell.h"
#include "table/hash_key.h"

namespace quillmere {

/// Whether texts that differ by the case of A to Z alone are taken as equal.
enum class TextCase { kIgnored, kCounts };

/// A text of fewer units than a block, in a register that each such text fills in its own way, its length given.
inline __m128i LoadShort(const XCHAR* text, std::size_t units) {
  if (units >= 4) return LoadEnds<4>(text, units);
  if (units >= 2) return LoadEnds<2>(text, units);
  return _mm_cvtsi32_si128(units == 0 ? 0 : *text);
}

template <TextCase textCase>
inline std::uint64_t HashBlock(__m128i block, std::uint64_t hash, const HashKey& key) {
  if constexpr (textCase == TextCase::kIgnored) block = FoldBlock(block);
  const auto low = static_cast<std::uint64_t>(_mm_cvtsi128_si64(block));
  const auto high = static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_unpackhi_epi64(block, block)));
  return key.Continued(hash, low, high);
}

/// The share of one of few blocks in a hash that does not hang on the shares of the others.
template <TextCase textCase, int place>
inline std::uint64_t HashFewBlock(__m128i block, const HashKey& key) {
  if constexpr (textCase == TextCase::kIgnored) block = FoldBlock(block);
  const auto low = static_cast<std::uint64_t>(_mm_cvtsi128_si64(block));
  const auto high = static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_unpackhi_epi64(block, block)));
  return key.Share<place>(low, high);
}

/// The hash of a text; no unit outside it is read. Inline: a million short texts are hashed in a call.
template <TextCase textCase>
inline std::uint64_t HashText(XStringView text, const HashKey& key) {
  const XCHAR* const units = text.data();
  const std::size_t count = text.size();
  std::uint64_t hash = key.StartOf(count);
  if (count < kTextBlock) return HashBlock<textCase>(LoadShort(units, count), hash, key);
  if (count > kTextBlock && count <= kFewBlocks * kTextBlock) {
    const FewBlocks blocks(units, count);
    return hash ^ HashFewBlock<textCase, 0>(blocks.first, key) ^ HashFewBlock<textCase, 1>(blocks.second, key) ^
           HashFewBlock<textCase, 2>(blocks.third, key) ^ HashFewBlock<textCase, 3>(blocks.last, key);
  }
  for (std::size_t at = 0; at + kTextBlock < count; at += kTextBlock)
    hash = HashBlock<textCase>(LoadBlock(units + at), hash, key);
  // The last block may overlap the one before.
  return HashBlock<textCase>(LoadBlock(units + count - kTextBlock), hash, key);
}

inline std::uint64_t HashNumber(double number, const HashKey& key) noexcept {
  // The two zeros are equal.
  return key.Of(std::bit_cast<std::uint64_t>(number + 0.0));
}

/// The hash of a single cell: equal for cells between which CompareOpers, with the case of texts as asked, gives 0.
/// That comparison takes a number that is not one for equal to all; it has no hash, callers look for it. What is no
/// single cell is "Bad XLOPER type".
template <TextCase textCase>
inline std::uint64_t HashCell(const XLOPER12& cell, const HashKey& key) {
  if (IsNumberCell(cell)) [[likely]]
    return HashNumber(cell.val.num, key);
  if (IsTextCell(cell)) return HashText<textCase>(TextOf(cell), key);
  const std::uint32_t type = CellType(cell);
  const bool hasValue = type == xltypeBool || type == xltypeErr || type == xltypeInt;
  return key.Of(std::uint64_t{hasValue ? static_cast<std::uint32_t>(cell.val.w) : 0} << 32 | type);
}

/// Hashes texts for the maps of the standard library.
template <TextCase textCase>
struct TextHash {
  using is_transparent = void;
  std::size_t operator()(XStringView text) const { return HashText<textCase>(text, HashKey::OfProcess()); }
};

}  // namespace quillmere
