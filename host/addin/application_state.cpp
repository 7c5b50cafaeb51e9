#include "host/addin/application_state.h"

namespace qcalc {

bool ApplicationState::Echo() const {
  const std::lock_guard lock(mutex_);
  return echo_;
}

void ApplicationState::SetEcho(bool isOn) {
  const std::lock_guard lock(mutex_);
  echo_ = isOn;
}

std::optional<Value> ApplicationState::Property(XStringView name) const {
  const std::lock_guard lock(mutex_);
  const auto found = properties_.find(name);
  return found != properties_.end() ? std::optional(found->second) : std::nullopt;
}

void ApplicationState::PutProperty(XStringView name, const Value& value) {
  const std::lock_guard lock(mutex_);
  if (const auto found = properties_.find(name); found != properties_.end()) found->second = value;
}

void ApplicationState::PutForeignProperty(XStringView name, const Value& value) {
  PutProperty(name, value);
  const std::lock_guard lock(mutex_);
  if (value.IsText()) foreignTexts_.insert(value.AsText());
}

bool ApplicationState::IsForeign(XStringView text) const {
  const std::lock_guard lock(mutex_);
  return foreignTexts_.contains(text);
}

bool ApplicationState::ShowsAlerts() const {
  const Value alerts = *Property(kAlerts);
  return !alerts.IsBoolean() || alerts.AsBoolean();
}

}  // namespace qcalc
