#include "host/addin/call_guards.h"

namespace qcalc {

ProcessorGuard::~ProcessorGuard() {
  if (ProcessorState::Current() == before_) return;
  before_.Restore();
  complaints_.Add(who_ + " changed how the processor rounds, or which faults of arithmetic it raises");
}

FolderGuard::~FolderGuard() {
  std::error_code error;
  if (error_ || std::filesystem::current_path(error) == before_) return;
  std::filesystem::current_path(before_, error);
  complaints_.Add(who_ + " changed the current folder");
}

ScreenGuard::~ScreenGuard() {
  if (!application_.Echo()) complaints_.Add(who_ + " left the screen's echo off");
  application_.SetEcho(true);
  if (!showedAlerts_ || application_.ShowsAlerts()) return;
  complaints_.Add(who_ + " left alerts off");
  application_.PutProperty(ApplicationState::kAlerts, Value::Boolean(true));
}

}  // namespace qcalc
