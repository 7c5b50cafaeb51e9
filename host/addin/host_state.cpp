#include "host/addin/host_state.h"

#include <atomic>

namespace qcalc {
namespace {

std::atomic<HostState*> loaded = nullptr;

}  // namespace

HostState* HostState::Loaded() { return loaded; }

void HostState::SetLoaded(HostState* state) { loaded = state; }

}  // namespace qcalc
