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

/// The hash of a text of so many units, few blocks at most, which are folded where case is ignored.
inline std::uint64_t HashBlocks(const FewBlocks& blocks, std::size_t count, const HashKey& key) {
  const std::uint64_t hash = key.StartOf(count);
  if (count <= kTextBlock) return key.Continued(hash, LowerWord(blocks.first), UpperWord(blocks.first));
  return hash ^ key.Share<0>(LowerWord(blocks.first), UpperWord(blocks.first)) ^
         key.Share<1>(LowerWord(blocks.second), UpperWord(blocks.second)) ^
         key.Share<2>(LowerWord(blocks.third), UpperWord(blocks.third)) ^
         key.Share<3>(LowerWord(blocks.last), UpperWord(blocks.last));
}

/// The blocks of a text of few, as HashBlocks wants them.
template <TextCase textCase>
inline FewBlocks BlocksOf(XStringView text) {
  const FewBlocks blocks(text.data(), text.size());
  return textCase == TextCase::kIgnored ? FoldBlocks(blocks) : blocks;
}

/// The hash of a text; no unit outside it is read. Inline: a million short texts are hashed in a call.
template <TextCase textCase>
inline std::uint64_t HashText(XStringView text, const HashKey& key) {
  const XCHAR* const units = text.data();
  const std::size_t count = text.size();
  if (count <= kFewBlocks * kTextBlock) return HashBlocks(BlocksOf<textCase>(text), count, key);
  const auto continued = [&](std::uint64_t hash, __m128i block) {
    if constexpr (textCase == TextCase::kIgnored) block = FoldBlock(block);
    return key.Continued(hash, LowerWord(block), UpperWord(block));
  };
  std::uint64_t hash = key.StartOf(count);
  for (std::size_t at = 0; at + kTextBlock < count; at += kTextBlock) hash = continued(hash, LoadBlock(units + at));
  // The last block may overlap the one before.
  return continued(hash, LoadBlock(units + count - kTextBlock));
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
