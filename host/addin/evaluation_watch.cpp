#include "host/addin/evaluation_watch.h"

#include "host/library/allocation.h"

namespace qcalc {

EvaluationWatch::EvaluationWatch(Addin& addin, bool countsAllocations) : addin_(addin) {
  addin_.meter.Start();
  addin_.faults.Start();
  AddinAllocations().Start(countsAllocations);
}

EvaluationWatch::~EvaluationWatch() {
  AddinAllocations().Stop();
  addin_.faults.Stop();
  addin_.meter.Stop();
}

}  // namespace qcalc
