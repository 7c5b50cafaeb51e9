// One evaluation: callbacks and allocations are counted, and what was armed takes place.
#pragma once

#include "host/addin/host_state.h"

namespace qcalc {

/// Lasts as long as the evaluation; made and ended on the main thread while no other evaluates.
class EvaluationWatch {
 public:
  /// With `countsAllocations` false they are not counted unless one is to fail, which costs the add-in no time.
  explicit EvaluationWatch(HostState& host, bool countsAllocations = true);
  ~EvaluationWatch();
  EvaluationWatch(const EvaluationWatch&) = delete;
  EvaluationWatch& operator=(const EvaluationWatch&) = delete;

 private:
  HostState& host_;
};

/// What was armed for the last evaluation and met nothing: a sentence each.
std::vector<std::string> TakeUnmet(HostState& host);

}  // namespace qcalc
