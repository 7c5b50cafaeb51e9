#include "host/calculation/function_profile.h"

#include <algorithm>
#include <tuple>

namespace qcalc {

void FunctionProfile::Note(XStringView name, Clock::duration time) {
  const std::lock_guard lock(mutex_);
  auto found = entries_.find(name);
  if (found == entries_.end()) found = entries_.emplace(name, Entry{XString(name)}).first;
  ++found->second.calls;
  found->second.time += time;
}

std::vector<FunctionProfile::Entry> FunctionProfile::Slowest(std::size_t count) const {
  std::vector<Entry> slowest;
  {
    const std::lock_guard lock(mutex_);
    for (const auto& [name, entry] : entries_) slowest.push_back(entry);
  }
  std::sort(slowest.begin(), slowest.end(), [](const Entry& one, const Entry& other) {
    return std::tie(other.time, one.name) < std::tie(one.time, other.name);
  });
  slowest.resize(std::min(count, slowest.size()));
  return slowest;
}

}  // namespace qcalc
