// The texts that the cells of a book share.
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <vector>

#include "host/values/text_pool.h"
#include "host/xlsx/memory_limit.h"
#include "host/xlsx/package.h"

namespace qcalc {

/// The shared texts by their numbers, from 0 on. They lie with the texts of one sheet, whose cells view them there;
/// other sheets get copies of those that they use.
class SharedTexts {
 public:
  /// None. `limit` outlives the object.
  explicit SharedTexts(MemoryLimit& limit) : limit_(limit) {}

  /// Reads the part into the pool of one sheet.
  void Read(const Package& package, const std::string& part, TextPool& pool);

  std::size_t Size() const { return texts_.size(); }
  /// The text of that number, below Size(), as a sheet with that pool may hold it.
  XStringView In(TextPool& pool, std::size_t number);

 private:
  struct Copy {
    const TextPool* pool = nullptr;
    const XCHAR* start = nullptr;
  };

  MemoryLimit& limit_;
  const TextPool* pool_ = nullptr;
  std::deque<XStringView> texts_;
  std::vector<Copy> copies_;  // for the sheet last asked for
};

}  // namespace qcalc
