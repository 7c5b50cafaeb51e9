// What commands of the add-in may change of Excel itself.
#pragma once

#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <vector>

#include "host/values/value.h"

namespace qcalc {

/// May be read and changed on any thread.
class ApplicationState {
 public:
  /// Whether the screen follows what commands do.
  bool Echo() const;
  void SetEcho(bool isOn);

  /// A property of the Application object that is put as well as got: DisplayAlerts, a boolean, or one of kEvents, the
  /// text of a macro. Nothing when there is no such property.
  std::optional<Value> Property(XStringView name) const;
  void PutProperty(XStringView name, const Value& value);
  /// The same as if somebody else than the add-in had put it.
  void PutForeignProperty(XStringView name, const Value& value);
  bool IsForeign(XStringView text) const;

  /// Whether boxes of Excel's own would wait for a person.
  bool ShowsAlerts() const;

  static constexpr XStringView kAlerts = XTEXT("DisplayAlerts");
  static constexpr XStringView kSheetActivated = XTEXT("OnSheetActivate");
  static constexpr XStringView kSheetDeactivated = XTEXT("OnSheetDeactivate");
  static constexpr XStringView kCalculated = XTEXT("OnCalculate");
  static constexpr XStringView kEvents[] = {kSheetActivated, kSheetDeactivated, kCalculated};

 private:
  mutable std::mutex mutex_;
  bool echo_ = true;
  std::map<XString, Value, std::less<>> properties_{{XString(kAlerts), Value::Boolean(true)},
                                                    {XString(kSheetActivated), Value::Text({})},
                                                    {XString(kSheetDeactivated), Value::Text({})},
                                                    {XString(kCalculated), Value::Text({})}};
  std::set<XString, std::less<>> foreignTexts_;
};

}  // namespace qcalc
