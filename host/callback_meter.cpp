#include "host/callback_meter.h"

namespace qcalc {

void CallbackMeter::Start() {
  for (Entry& entry : entries_) entry.calls = 0;
  isRunning_ = true;
}

void CallbackMeter::Stop() {
  isRunning_ = false;
  for (Entry& entry : entries_) entry.fails = false;
}

void CallbackMeter::Fail(const XlCallback& callback, int code, int nth) {
  Entry& entry = entries_[IndexOf(callback)];
  entry.code = code;
  entry.nth = nth;
  entry.fails = true;
}

std::optional<int> CallbackMeter::Count(const XlCallback& callback) {
  if (!isRunning_) return std::nullopt;
  Entry& entry = entries_[IndexOf(callback)];
  const int number = ++entry.calls;
  if (!entry.fails || (entry.nth != 0 && entry.nth != number)) return std::nullopt;
  return entry.code;
}

int CallbackMeter::Calls(const XlCallback& callback) const { return entries_[IndexOf(callback)].calls; }

}  // namespace qcalc
