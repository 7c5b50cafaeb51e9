#include "table/cell_hash.h"

#include "table/text_block.h"

namespace quillmere {
namespace {

/// A text of fewer units than a block, in a register that each such text fills in its own way, its length given.
__m128i LoadShort(const XCHAR* text, std::size_t units) {
  if (units >= 4) return LoadEnds<4>(text, units);
  if (units >= 2) return LoadEnds<2>(text, units);
  return _mm_cvtsi32_si128(units == 0 ? 0 : *text);
}

template <TextCase textCase>
std::uint64_t HashBlock(__m128i block, std::uint64_t hash) {
  if constexpr (textCase == TextCase::kIgnored) block = FoldBlock(block);
  const auto low = static_cast<std::uint64_t>(_mm_cvtsi128_si64(block));
  const auto high = static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_unpackhi_epi64(block, block)));
  return MixHash(low ^ hash, high);
}

}  // namespace

template <TextCase textCase>
std::uint64_t HashText(XStringView text) {
  const XCHAR* const units = text.data();
  const std::size_t count = text.size();
  std::uint64_t hash = MixHash(count, xltypeStr);
  if (count < kTextBlock) return HashBlock<textCase>(LoadShort(units, count), hash);
  for (std::size_t at = 0; at + kTextBlock < count; at += kTextBlock)
    hash = HashBlock<textCase>(LoadBlock(units + at), hash);
  // The last block may overlap the one before.
  return HashBlock<textCase>(LoadBlock(units + count - kTextBlock), hash);
}

template std::uint64_t HashText<TextCase::kIgnored>(XStringView);
template std::uint64_t HashText<TextCase::kCounts>(XStringView);

}  // namespace quillmere
