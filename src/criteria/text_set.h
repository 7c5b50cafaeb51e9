// The texts that meet any of many criteria.
#pragma once

#include <optional>
#include <vector>

#include "criteria/criterion.h"
#include "table/hash_key.h"
#include "table/place_index.h"

namespace quillmere::criteria {

/// Criteria that compare texts, put together: equal texts are found by hash, and of those that ask for texts before or
/// behind one only the widest counts. A view of their texts. Where all are added, MakeIndex comes before the first
/// question.
class TextSet {
 public:
  /// Takes in a prepared criterion whose value is compared with texts.
  void Add(const Criterion& criterion);
  /// From now on all texts hold.
  void AddAll() noexcept { holdsAll_ = true; }

  void MakeIndex();

  bool Holds(XStringView text) const;

 private:
  struct Bound {
    XStringView text;
    bool included;
  };

  void AddBefore(const Bound& bound);
  void AddBehind(const Bound& bound);
  void AddAllBut(XStringView text);

  bool IsListed(XStringView text) const;

  std::vector<XStringView> equal_;
  std::optional<PlaceIndex> index_;  ///< of those
  HashKey key_ = HashKey::OfProcess();
  std::optional<Bound> before_;        ///< texts before it hold
  std::optional<Bound> behind_;        ///< texts behind it hold
  std::optional<XStringView> allBut_;  ///< all texts hold but this
  bool holdsAll_ = false;
};

}  // namespace quillmere::criteria
