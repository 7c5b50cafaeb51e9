#include "host/faults/object_refusals.h"

namespace qcalc {

void ObjectRefusals::Refuse(std::string name, std::int32_t code, int nth) {
  if (name == kBookWindows) {
    hidesBookWindows_ = true;
    return;
  }
  const std::lock_guard lock(mutex_);
  armed_.push_back({std::move(name), code, nth});
  isArmed_ = true;
}

std::optional<std::int32_t> ObjectRefusals::Count(std::string_view step, std::string_view member) {
  if (!isArmed_) return std::nullopt;
  const std::lock_guard lock(mutex_);
  std::optional<std::int32_t> code;
  for (Armed& armed : armed_) {
    if (armed.name != kAnyCall && armed.name != step && armed.name != member) continue;
    ++armed.calls;
    if (armed.nth != 0 && armed.nth != armed.calls) continue;
    armed.isMet = true;
    code = armed.code;
  }
  return code;
}

void ObjectRefusals::Stop() {
  const std::lock_guard lock(mutex_);
  for (const Armed& armed : armed_)
    if (!armed.isMet)
      unmet_.push_back(armed.name + (armed.nth ? ", call " + std::to_string(armed.nth) : "") + ": there were " +
                       std::to_string(armed.calls) + " calls");
  armed_.clear();
  isArmed_ = hidesBookWindows_ = false;
}

}  // namespace qcalc
