// The headers of the first block, made ready for finding those of later blocks in it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "table/cell_hash.h"
#include "table/cell_line.h"

namespace quillmere {

/// Two headers match when their texts are equal as UpperLabel gives them, where a number or boolean of the first block
/// counts as its text; or when they are numbers or booleans of the same type and value. A number of a later block does
/// not match a text of the first one.
///
/// Cost grows with the number of headers, not with its square: equal headers share one key, and each later header is
/// looked up once.
class HeaderIndex {
 public:
  /// Reads the first block's headers; false when one of them is empty or an error.
  bool Read(const CellLine& headers);

  /// For each header of the first block, the zero-based place of the matching header in a later block, the last where
  /// several match, or kNoPlace. An empty result when not one header matches. Empty cells and errors match nothing.
  std::vector<std::int32_t> Match(const CellLine& headers) const;

 private:
  /// A number or a boolean: its type, and its value as bits.
  struct Value {
    std::uint32_t type;
    std::uint64_t bits;
    bool operator==(const Value&) const = default;
  };
  struct ValueHash {
    std::size_t operator()(const Value& value) const noexcept;
  };
  /// The keys of one header. A text has no value key.
  struct Keys {
    std::int32_t text;
    std::int32_t value;
  };

  static Value ValueOf(const XLOPER12& cell);
  template <class Map, class Key>
  static std::int32_t KeyOf(Map& map, const Key& key);
  template <class Map, class Key>
  static void Note(std::vector<std::int32_t>& places, const Map& map, const Key& key, std::int32_t place);

  std::vector<Keys> headers_;
  std::unordered_map<XString, std::int32_t, TextHash<TextCase::kCounts>>
      texts_;  ///< upper-cased text: key, counting from 0
  std::unordered_map<Value, std::int32_t, ValueHash> values_;
};

}  // namespace quillmere
