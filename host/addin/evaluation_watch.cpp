#include "host/addin/evaluation_watch.h"

#include "host/library/allocation.h"

namespace qcalc {

EvaluationWatch::EvaluationWatch(HostState& host, bool countsAllocations) : host_(host) {
  host_.meter.Start();
  host_.faults.Start();
  AddinAllocations().Start(countsAllocations);
}

EvaluationWatch::~EvaluationWatch() {
  AddinAllocations().Stop();
  host_.faults.Stop();
  host_.meter.Stop();
}

}  // namespace qcalc
