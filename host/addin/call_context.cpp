#include "host/addin/call_context.h"

#include <utility>

namespace qcalc {
namespace {

thread_local CallContext* innermost = nullptr;

}  // namespace

CallContext::CallContext(HostState& itsHost, Place itsPlace, std::string itsFunction,
                         const EvaluationContext& itsEvaluation)
    : host(itsHost),
      place(itsPlace),
      function(std::move(itsFunction)),
      evaluation(itsEvaluation),
      outer_(std::exchange(innermost, this)),
      note_(function, place == Place::kFreeing ? "the freeing of a result of " : "") {}

CallContext::~CallContext() { innermost = outer_; }

CallContext* CallContext::Current() { return innermost; }

}  // namespace qcalc
