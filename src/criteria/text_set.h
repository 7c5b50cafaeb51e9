// The texts that meet any of many criteria.
#pragma once

#include <optional>
#include <unordered_set>

#include "criteria/criterion.h"
#include "frame/text/fold_case.h"
#include "table/cell_hash.h"

namespace quillmere::criteria {

/// Criteria that compare texts, put together: equal texts are found by hash, and of those that ask for texts before or
/// behind one only the widest counts. A view of their texts.
class TextSet {
 public:
  /// Takes in a prepared criterion whose value is compared with texts.
  void Add(const Criterion& criterion);
  /// From now on all texts hold.
  void AddAll() noexcept { holdsAll_ = true; }

  bool Holds(XStringView text) const;

 private:
  struct Equal {
    bool operator()(XStringView a, XStringView b) const { return EqualFolded(a, b); }
  };
  struct Bound {
    XStringView text;
    bool included;
  };

  void AddBefore(const Bound& bound);
  void AddBehind(const Bound& bound);
  void AddAllBut(XStringView text);

  std::unordered_set<XStringView, TextHash<TextCase::kIgnored>, Equal> equal_;
  std::optional<Bound> before_;        ///< texts before it hold
  std::optional<Bound> behind_;        ///< texts behind it hold
  std::optional<XStringView> allBut_;  ///< all texts hold but this
  bool holdsAll_ = false;
};

}  // namespace quillmere::criteria
