#include "shape/header_index.h"

#include <algorithm>
#include <bit>
#include <functional>

#include "frame/convert/cell_text.h"
#include "frame/text/upper_case.h"

namespace quillmere {
namespace {

constexpr std::int32_t kNone = -1;

bool IsBlankOrError(std::uint32_t type) { return type == xltypeNil || type == xltypeMissing || type == xltypeErr; }

}  // namespace

std::size_t HeaderIndex::ValueHash::operator()(const Value& value) const noexcept {
  return std::hash<std::uint64_t>()((value.bits ^ value.type) * 0x9E37'79B9'7F4A'7C15);
}

HeaderIndex::Value HeaderIndex::ValueOf(const XLOPER12& cell) {
  const std::uint32_t type = TypeOf(cell);
  if (type == xltypeBool) return {type, static_cast<std::uint64_t>(cell.val.xbool)};
  const double number = CellNumber(cell);
  return {xltypeNum, std::bit_cast<std::uint64_t>(number == 0 ? 0.0 : number)};  // -0 equals 0
}

template <class Map, class Key>
std::int32_t HeaderIndex::KeyOf(Map& map, const Key& key) {
  return map.try_emplace(key, static_cast<std::int32_t>(map.size())).first->second;
}

template <class Map, class Key>
void HeaderIndex::Note(std::vector<std::int32_t>& places, const Map& map, const Key& key, std::int32_t place) {
  if (const auto found = map.find(key); found != map.end()) places[found->second] = place;
}

bool HeaderIndex::Read(const HeaderLine& headers) {
  headers_.reserve(headers.count);
  XString upper;
  for (std::int32_t place = 0; place < headers.count; ++place) {
    const XLOPER12& cell = headers.At(place);
    const std::uint32_t type = CellType(cell);
    if (IsBlankOrError(type)) return false;
    NumberTextBuffer buffer;
    AssignUpperCase(upper, TextForm(cell, buffer));
    headers_.push_back({KeyOf(texts_, upper), type == xltypeStr ? kNone : KeyOf(values_, ValueOf(cell))});
  }
  return true;
}

std::vector<std::int32_t> HeaderIndex::Match(const HeaderLine& headers) const {
  std::vector<std::int32_t> textPlaces(texts_.size(), kNone);
  std::vector<std::int32_t> valuePlaces(values_.size(), kNone);
  XString upper;
  for (std::int32_t place = 0; place < headers.count; ++place) {
    const XLOPER12& cell = headers.At(place);
    const std::uint32_t type = CellType(cell);
    if (IsBlankOrError(type)) continue;
    if (type == xltypeStr) {
      AssignUpperCase(upper, CellText(cell));
      Note(textPlaces, texts_, upper, place);
    } else {
      Note(valuePlaces, values_, ValueOf(cell), place);
    }
  }
  std::vector<std::int32_t> places;
  places.reserve(headers_.size());
  for (const Keys& keys : headers_) {
    const std::int32_t byValue = keys.value == kNone ? kNone : valuePlaces[keys.value];
    places.push_back(std::max(textPlaces[keys.text], byValue));
  }
  if (std::all_of(places.begin(), places.end(), [](std::int32_t place) { return place == kNone; })) places.clear();
  return places;
}

}  // namespace quillmere
