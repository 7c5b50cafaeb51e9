// Names in formulas that stand for nothing, for a hint to whoever wrote them.
#pragma once

#include <mutex>
#include <set>
#include <utility>
#include <vector>

#include "xlcall/xchar.h"

namespace qcalc {

/// Written to from any thread.
class UnknownNames {
 public:
  enum class Kind {
    kFunction,
    kName,   ///< of a value, or what was to be a reference
    kSheet,  ///< `Data`, `[Book]Data`
  };
  using Entry = std::pair<Kind, XString>;

  /// Notes the name unless it was noted before.
  void Note(Kind kind, XStringView name) {
    const std::lock_guard lock(mutex_);
    if (Entry entry{kind, name}; known_.insert(entry).second) fresh_.push_back(std::move(entry));
  }

  /// Hands over what has been noted since the last time.
  std::vector<Entry> Take() {
    const std::lock_guard lock(mutex_);
    return std::exchange(fresh_, {});
  }

 private:
  std::mutex mutex_;
  std::set<Entry> known_;
  std::vector<Entry> fresh_;
};

}  // namespace qcalc
