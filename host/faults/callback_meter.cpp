#include "host/faults/callback_meter.h"

namespace qcalc {

void CallbackMeter::Start() {
  for (Entry& entry : entries_) entry.calls = 0;
  isRunning_ = true;
}

void CallbackMeter::Stop() {
  isRunning_ = false;
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    Entry& entry = entries_[i];
    if (entry.isArmed && !entry.isMet)
      unmet_.push_back(std::string(kXlCallbacks[i].name) + (entry.nth ? ", call " + std::to_string(entry.nth) : "") +
                       ": there were " + std::to_string(entry.calls) + " calls");
    entry.armed = {};
    entry.isArmed = entry.isMet = false;
  }
}

CallbackMeter::Entry& CallbackMeter::Arm(const XlCallback& callback, int nth) {
  Entry& entry = entries_[IndexOf(callback)];
  entry.nth = nth;
  entry.isArmed = true;
  return entry;
}

void CallbackMeter::Fail(const XlCallback& callback, int code, int nth) { Arm(callback, nth).armed.code = code; }

void CallbackMeter::AnswerWith(const XlCallback& callback, AnswerKind kind, int nth) {
  Arm(callback, nth).armed.answer = kind;
}

void CallbackMeter::AnswerWith(const XlCallback& callback, const Formula& formula, int nth) {
  Arm(callback, nth).armed.formula = std::make_shared<const Formula>(formula);
}

void CallbackMeter::FaultIn(const XlCallback& callback) { Arm(callback, 0).armed.hasFault = true; }

Interference CallbackMeter::Count(const XlCallback& callback) {
  if (!isRunning_) return {};
  Entry& entry = entries_[IndexOf(callback)];
  const int number = ++entry.calls;
  if (!entry.isArmed || (entry.nth != 0 && entry.nth != number)) return {};
  entry.isMet = true;
  return entry.armed;
}

int CallbackMeter::Calls(const XlCallback& callback) const { return entries_[IndexOf(callback)].calls; }

}  // namespace qcalc
