#include "host/process/journal.h"

#include <functional>
#include <map>
#include <set>
#include <thread>

namespace qcalc {
namespace {

// While a call is being noted its slot is taken and has no order yet.
constexpr std::uint64_t kTaken = UINT64_MAX;

Journal ownJournal;
Journal* processJournal = &ownJournal;

}  // namespace

Journal& ProcessJournal() { return *processJournal; }

void SetProcessJournal(Journal& journal) { processJournal = &journal; }

std::string Journal::OpenCalls() const {
  std::map<std::uint64_t, std::map<std::uint64_t, const Call*, std::greater<>>> threads;
  for (const Call& call : calls)
    if (call.order != 0 && call.order != kTaken) threads[call.thread].emplace(call.order, &call);
  std::set<std::string> chains;
  for (const auto& [thread, open] : threads) {
    std::string chain;
    for (const auto& [order, call] : open) chain += (chain.empty() ? "" : ", within ") + call->name.Get();
    chains.insert(chain);
  }
  std::string all;
  for (const std::string& chain : chains) all += (all.empty() ? "" : "; or ") + chain;
  return all;
}

void Journal::BeginProcess() {
  for (Call& call : calls) call.order = 0;
  lastWords.Set({});
  isFinished = false;
}

CallNote::CallNote(std::string_view name, std::string_view about) : call_(nullptr) {
  Journal& journal = ProcessJournal();
  const std::uint64_t thread = std::hash<std::thread::id>()(std::this_thread::get_id());
  for (std::size_t i = 0; i < journal.calls.size() && !call_; ++i) {
    Journal::Call& slot = journal.calls[(thread + i) % journal.calls.size()];
    std::uint64_t free = 0;
    if (slot.order.compare_exchange_strong(free, kTaken)) call_ = &slot;
  }
  if (!call_) return;
  call_->thread = thread;
  call_->name.Set(about);
  call_->name.Append(name);
  call_->order = ++journal.callsMade;
}

CallNote::~CallNote() {
  if (call_) call_->order = 0;
}

}  // namespace qcalc
