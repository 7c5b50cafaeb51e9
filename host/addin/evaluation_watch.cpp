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
  host_.refusals.Stop();
  host_.faults.Stop();
  host_.meter.Stop();
}

std::vector<std::string> TakeUnmet(HostState& host) {
  std::vector<std::string> unmet = host.meter.TakeUnmet();
  for (std::string& other : host.faults.TakeUnmet()) unmet.push_back(std::move(other));
  for (std::string& other : host.refusals.TakeUnmet()) unmet.push_back(std::move(other));
  if (std::string allocation = AddinAllocations().TakeUnmet(); !allocation.empty())
    unmet.push_back(std::move(allocation));
  for (std::string& text : unmet) text = "what was armed met nothing: " + text;
  return unmet;
}

}  // namespace qcalc
