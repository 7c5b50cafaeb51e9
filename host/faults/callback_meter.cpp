#include "host/faults/callback_meter.h"

namespace qcalc {

void CallbackMeter::Start() {
  for (Entry& entry : entries_) entry.calls = 0;
  isRunning_ = true;
}

void CallbackMeter::Stop() {
  isRunning_ = false;
  for (Entry& entry : entries_) entry.armed = {};
}

void CallbackMeter::Fail(const XlCallback& callback, int code, int nth) {
  Entry& entry = entries_[IndexOf(callback)];
  entry.armed.code = code;
  entry.nth = nth;
}

void CallbackMeter::AnswerWith(const XlCallback& callback, AnswerKind kind, int nth) {
  Entry& entry = entries_[IndexOf(callback)];
  entry.armed.answer = kind;
  entry.nth = nth;
}

void CallbackMeter::AnswerWith(const XlCallback& callback, const Formula& formula, int nth) {
  Entry& entry = entries_[IndexOf(callback)];
  entry.armed.formula = std::make_shared<const Formula>(formula);
  entry.nth = nth;
}

void CallbackMeter::FaultIn(const XlCallback& callback) {
  Entry& entry = entries_[IndexOf(callback)];
  entry.armed.hasFault = true;
  entry.nth = 0;
}

Interference CallbackMeter::Count(const XlCallback& callback) {
  if (!isRunning_) return {};
  Entry& entry = entries_[IndexOf(callback)];
  const int number = ++entry.calls;
  return entry.nth == 0 || entry.nth == number ? entry.armed : Interference{};
}

int CallbackMeter::Calls(const XlCallback& callback) const { return entries_[IndexOf(callback)].calls; }

}  // namespace qcalc
