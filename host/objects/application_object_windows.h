// Application, and the windows of books that lead to it.
#pragma once

#include "host/objects/dispatch_object_windows.h"

namespace qcalc {

class ApplicationObject final : public DispatchObject {
 public:
  explicit ApplicationObject(std::shared_ptr<ObjectOffice> office);

  Variant Workbooks(const ObjectCall& call);
  Variant Name(const ObjectCall& call);
  Variant Version(const ObjectCall& call);
  Variant Hwnd(const ObjectCall& call);
  /// Its text evaluated as a macro sheet does.
  Variant ExecuteExcel4Macro(const ObjectCall& call);
  Variant DisplayAlerts(const ObjectCall& call) { return Property(ApplicationState::kAlerts, VT_BOOL, call); }
  Variant OnSheetActivate(const ObjectCall& call) { return Property(ApplicationState::kSheetActivated, VT_BSTR, call); }
  Variant OnSheetDeactivate(const ObjectCall& call) {
    return Property(ApplicationState::kSheetDeactivated, VT_BSTR, call);
  }
  Variant OnCalculate(const ObjectCall& call) { return Property(ApplicationState::kCalculated, VT_BSTR, call); }

 private:
  Variant Property(XStringView name, VARTYPE type, const ObjectCall& call);
  /// What changes Excel or runs in it is for its main thread.
  void CheckMainThread(const char* member) const;
};

/// What an EXCEL7 window gives as its native object model.
class WindowObject final : public DispatchObject {
 public:
  explicit WindowObject(std::shared_ptr<ObjectOffice> office);

  /// The code with which the window is to refuse its object now.
  std::optional<std::int32_t> RefusesAccess() const { return Host().refusals.Count(kAccessibleObject); }
};

}  // namespace qcalc
