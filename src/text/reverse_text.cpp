// Texts turned round.
//
// Serves REVERSE.TEXT.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "frame/convert/argument.h"
#include "frame/text/text_block.h"
#include "implementations/text.h"
#include "text/changed_texts.h"

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

/// That many units of a text: the last ones, or, below 0, the first; all of it for 0, and where it has no more.
inline XStringView EndOfText(XStringView text, std::int64_t units) {
  const auto wanted = static_cast<std::size_t>(std::abs(units));
  if (wanted == 0 || wanted >= text.size()) return text;
  return units > 0 ? text.substr(text.size() - wanted) : text.substr(0, wanted);
}

}  // namespace

void Functions::ReverseText(CXlOper& result, const CXlArgument& text,
                            const CXlScalarArgument<ElementKind::kInteger>& numChars) {
  const CXlCells cells = text.Value().Cells();
  const std::int64_t wanted = numChars.Read();
  result = ChangeTexts(cells, [wanted](CXlArrayBuilder& reversed, XLOPER12* to, XStringView whole) {
    const XStringView part = EndOfText(whole, wanted);
    WriteReversed(reversed.NewText(to, part.size()), part);
  });
}

}  // namespace quillmere::text
