// Texts turned round.
//
// Serves REVERSE.TEXT.
#include <cstddef>
#include <cstdint>

#include "frame/convert/argument.h"
#include "frame/text/text_block.h"
#include "implementations/text.h"
#include "text/changed_texts.h"
#include "text/text_ends.h"

namespace quillmere::text {
namespace {

inline __m128i ReverseBlock(__m128i units) {
  constexpr int kBackwards = 0x1B;
  constexpr int kHalvesSwapped = 0x4E;
  units = _mm_shufflehi_epi16(_mm_shufflelo_epi16(units, kBackwards), kBackwards);
  return _mm_shuffle_epi32(units, kHalvesSwapped);
}

/// Writes a text backwards, by blocks, the last of which may write once more what the one before has written.
inline void WriteReversed(XCHAR* to, XStringView text) {
  const XCHAR* const units = text.data();
  const std::size_t count = text.size();
  if (count < kTextBlock) {
    for (std::size_t at = 0; at < count; ++at) to[at] = units[count - 1 - at];
    return;
  }
  for (std::size_t at = 0; at + kTextBlock < count; at += kTextBlock)
    StoreBlock(to + at, ReverseBlock(LoadBlock(units + count - kTextBlock - at)));
  StoreBlock(to + count - kTextBlock, ReverseBlock(LoadBlock(units)));
}

}  // namespace

void Functions::ReverseText(CXlOper& result, const CXlArgument& text,
                            const CXlScalarArgument<ElementKind::kInteger>& numChars) {
  const CXlCells cells = text.Value().Cells();
  const std::int64_t wanted = numChars.Read();
  result = ChangeTexts(cells, [wanted](CXlArrayBuilder& reversed, XLOPER12* to, XStringView whole) {
    const XStringView part = EndOf(whole, -wanted);
    WriteReversed(reversed.NewText(to, part.size()), part);
  });
}

}  // namespace quillmere::text
