// The add-in's functions for VBA, found in the library by name as a Declare statement finds them.
#pragma once

#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "host/library/library.h"

namespace qcalc {

/// The functions of one of the two stores with numbers for keys.
struct NumberStoreExports {
  using Pairs = std::vector<std::pair<std::int32_t, std::int32_t>>;

  /// `ids` is the store's name within the names: "RowID" or "ColID".
  NumberStoreExports(const Library& library, const std::string& ids)
      : put(library.FindAs<decltype(put)>("Put_" + ids + "Longs")),
        get(library.FindAs<decltype(get)>("Get_" + ids + "Longs")),
        count(library.FindAs<decltype(count)>("Get_" + ids + "Long_Count")),
        destroy(library.FindAs<decltype(destroy)>("Destroy_" + ids + "Long")) {}

  /// Reads the entries as VBA code does, and puts them in order.
  Pairs Entries() const;

  std::int32_t (*put)(const std::int32_t* keys, const std::int32_t* numbers, std::int32_t count);
  std::int32_t (*get)(std::int32_t* keys, std::int32_t* numbers);
  std::uint32_t (*count)();
  std::int32_t (*destroy)();
};

}  // namespace qcalc
