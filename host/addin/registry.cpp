#include "host/addin/registry.h"

#include <mutex>

namespace qcalc {
namespace {

// Excel's ids are addresses of sorts: large, and negative when the sign bit happens to be set.
constexpr double kFirstId = 1'474'822'144;
constexpr double kIdStep = 65'536;
constexpr int kNegativeEvery = 3;

}  // namespace

double Registry::NextId() {
  const double id = kFirstId + kIdStep * idsGiven_;
  return ++idsGiven_ % kNegativeEvery == 0 ? -id : id;
}

const RegisteredFunction& Registry::Add(std::unique_ptr<RegisteredFunction> function) {
  const std::lock_guard lock(mutex_);
  RegisteredFunction* entered = nullptr;
  for (const auto& other : functions_)
    if (other->useCount > 0 && other->procedure == function->procedure && other->typeText == function->typeText &&
        EqualsIgnoringCase(other->name, function->name) && other->macroType == function->macroType)
      entered = other.get();
  if (entered) {
    ++entered->useCount;
  } else {
    function->id = NextId();
    if (function->narrow) function->narrow->id = function->id;
    entered = functions_.emplace_back(std::move(function)).get();
  }
  if (!entered->name.empty()) names_[entered->name] = entered;
  return *entered;
}

bool Registry::Remove(double id) {
  RegisteredFunction* function = Find(id);
  if (!function) return false;
  const std::lock_guard lock(mutex_);
  --function->useCount;
  return true;
}

bool Registry::RemoveName(XStringView name) {
  const std::lock_guard lock(mutex_);
  const auto found = names_.find(name);
  if (found == names_.end()) return false;
  names_.erase(found);
  return true;
}

void Registry::Clear() {
  const std::lock_guard lock(mutex_);
  names_.clear();
  functions_.clear();
}

RegisteredFunction* Registry::Find(XStringView name) const {
  const std::shared_lock lock(mutex_);
  const auto found = names_.find(name);
  return found != names_.end() && found->second->useCount > 0 ? found->second : nullptr;
}

RegisteredFunction* Registry::Find(double id) const {
  const std::shared_lock lock(mutex_);
  for (const auto& function : functions_)
    if (function->id == id && function->useCount > 0) return function.get();
  return nullptr;
}

std::vector<const RegisteredFunction*> Registry::All() const {
  const std::shared_lock lock(mutex_);
  std::vector<const RegisteredFunction*> all;
  for (const auto& function : functions_)
    if (function->useCount > 0) all.push_back(function.get());
  return all;
}

}  // namespace qcalc
