#include "shape/slice_labels.h"

#include <algorithm>

#include "frame/text/upper_case.h"

namespace quillmere::shape {
namespace {

/// The bit of a length. Capitals are as many units as what they are made of.
std::uint64_t LengthBit(std::size_t length) noexcept { return std::uint64_t{1} << std::min<std::size_t>(length, 63); }

/// The bit of a text's last unit: of labels that count up, that is where most differ.
std::uint64_t EndingBit(XStringView text) {
  return std::uint64_t{1} << (text.empty() ? 0 : UpperCase(text.back()) % 64);
}

bool LooksNumeric(XStringView label) noexcept {
  return !label.empty() && (label[0] == XTEXT('-') || (label[0] >= XTEXT('0') && label[0] <= XTEXT('9')));
}

}  // namespace

void SliceLabels::Want(const XLOPER12& label) {
  const XString& text = upper_.Of(label);
  if (!places_.try_emplace(text, kXlMaxRows).second) return;
  lengths_ |= LengthBit(text.size());
  endings_ |= EndingBit(text);
  someLookNumeric_ = someLookNumeric_ || LooksNumeric(text);
}

/// Whether a cell is worth looking up: most are not, and a number would have to be written first.
bool SliceLabels::MayBeWanted(const XLOPER12& cell) const {
  if (IsNumberCell(cell)) return someLookNumeric_;
  if (!IsTextCell(cell)) return true;
  const XStringView text = TextOf(cell);
  return (lengths_ & LengthBit(text.size())) != 0 && (endings_ & EndingBit(text)) != 0;
}

void SliceLabels::LookAt(const CellLine& cells, std::int32_t first) {
  for (std::int32_t at = 0; at < cells.count; ++at) {
    const XLOPER12& cell = cells.At(at);
    if (!MayBeWanted(cell)) continue;
    if (const auto found = places_.find(upper_.Of(cell)); found != places_.end()) found->second.Append({first + at, 1});
  }
}

std::span<const PlaceRun> SliceLabels::PlacesOf(const XLOPER12& label) {
  return places_.find(upper_.Of(label))->second.Runs();
}

}  // namespace quillmere::shape
