#include "host/addin/call_context.h"

#include <utility>

namespace qcalc {
namespace {

thread_local CallContext* innermost = nullptr;

}  // namespace

CallContext::CallContext(Addin& itsAddin, Place itsPlace, std::string itsFunction,
                         const EvaluationContext& itsEvaluation)
    : addin(itsAddin),
      place(itsPlace),
      function(std::move(itsFunction)),
      evaluation(itsEvaluation),
      outer_(std::exchange(innermost, this)) {}

CallContext::~CallContext() { innermost = outer_; }

CallContext* CallContext::Current() { return innermost; }

}  // namespace qcalc
