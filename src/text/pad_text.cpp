// Texts brought to one length.
//
// Serves PAD.TEXT.
#include <algorithm>
#include <cstddef>

#include "frame/convert/argument.h"
#include "frame/values/cell_copy.h"
#include "frame/values/scratch_array.h"
#include "implementations/text.h"
#include "text/changed_texts.h"

namespace quillmere::text {
namespace {

/// `pad`, which is not empty, as often as it takes to have `length` units at least.
ScratchArray<XCHAR> RepeatPad(XStringView pad, std::size_t length) {
  ScratchArray<XCHAR> padding((length + pad.size() - 1) / pad.size() * pad.size());
  if (padding.empty()) return padding;
  CopyUnits(padding.data(), pad.data(), pad.size());
  for (std::size_t done = pad.size(); done < padding.size(); done *= 2)
    CopyUnits(padding.data() + done, padding.data(), std::min(done, padding.size() - done));
  return padding;
}

/// Each text with the end of the padding in front of it, or without its own beginning.
CXlOper PadFront(const CXlCells& cells, const ScratchArray<XCHAR>& padding, std::size_t length) {
  return ChangeTexts(cells, [&padding, length](CXlArrayBuilder& padded, XLOPER12* to, XStringView text) {
    XCHAR* const units = padded.NewText(to, length);
    const std::size_t kept = std::min(text.size(), length);
    CopyUnits(units, padding.end() - (length - kept), length - kept);
    CopyUnits(units + (length - kept), text.data() + (text.size() - kept), kept);
  });
}

/// Each text with the beginning of the padding behind it, or without its own end.
CXlOper PadEnd(const CXlCells& cells, const ScratchArray<XCHAR>& padding, std::size_t length) {
  return ChangeTexts(cells, [&padding, length](CXlArrayBuilder& padded, XLOPER12* to, XStringView text) {
    XCHAR* const units = padded.NewText(to, length);
    const std::size_t kept = std::min(text.size(), length);
    CopyUnits(units, text.data(), kept);
    CopyUnits(units + kept, padding.data(), length - kept);
  });
}

}  // namespace

void Functions::PadText(CXlOper& result, const CXlArgument& pad, const CXlArgument& text,
                        const CXlScalarArgument<ElementKind::kInteger>& length,
                        const CXlScalarArgument<ElementKind::kBoolean>& padEnd) {
  result.SetError(xlerrValue);
  const CXlCells cells = text.Value().Cells();
  const XLOPER12* const padCell = OnlyCell(pad.Value());
  if (!padCell || !IsTextCell(*padCell) || TextOf(*padCell).empty()) return;
  const std::int32_t wanted = length.Read();
  if (wanted < 0) return;
  if (wanted > kXlMaxText) ThrowStringTooLong();
  const bool behind = padEnd.Read();

  const auto units = static_cast<std::size_t>(wanted);
  const ScratchArray<XCHAR> padding = RepeatPad(TextOf(*padCell), units);
  result = behind ? PadEnd(cells, padding, units) : PadFront(cells, padding, units);
}

}  // namespace quillmere::text
