#include "table/header_index.h"

#include <algorithm>
#include <bit>

#include "table/labels.h"

namespace quillmere {
namespace {

constexpr std::int32_t kNoKey = -1;

bool IsBlankOrError(std::uint32_t type) { return type == xltypeNil || type == xltypeMissing || type == xltypeErr; }

}  // namespace

std::size_t HeaderIndex::ValueHash::operator()(const Value& value) const noexcept {
  return HashKey::OfProcess().Of(value.bits ^ value.type);
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

bool HeaderIndex::Read(const CellLine& headers) {
  headers_.reserve(headers.count);
  UpperLabel upper;
  for (std::int32_t place = 0; place < headers.count; ++place) {
    const XLOPER12& cell = headers.At(place);
    const std::uint32_t type = CellType(cell);
    if (IsBlankOrError(type)) return false;
    headers_.push_back({KeyOf(texts_, upper.Of(cell)), type == xltypeStr ? kNoKey : KeyOf(values_, ValueOf(cell))});
  }
  return true;
}

std::vector<std::int32_t> HeaderIndex::Match(const CellLine& headers) const {
  std::vector<std::int32_t> textPlaces(texts_.size(), kNoPlace);
  std::vector<std::int32_t> valuePlaces(values_.size(), kNoPlace);
  UpperLabel upper;
  for (std::int32_t place = 0; place < headers.count; ++place) {
    const XLOPER12& cell = headers.At(place);
    const std::uint32_t type = CellType(cell);
    if (IsBlankOrError(type)) continue;
    if (type == xltypeStr) {
      Note(textPlaces, texts_, upper.Of(cell), place);
    } else {
      Note(valuePlaces, values_, ValueOf(cell), place);
    }
  }
  std::vector<std::int32_t> places;
  places.reserve(headers_.size());
  for (const Keys& keys : headers_) {
    const std::int32_t byValue = keys.value == kNoKey ? kNoPlace : valuePlaces[keys.value];
    places.push_back(std::max(textPlaces[keys.text], byValue));
  }
  if (std::all_of(places.begin(), places.end(), [](std::int32_t place) { return place == kNoPlace; })) places.clear();
  return places;
}

}  // namespace quillmere
