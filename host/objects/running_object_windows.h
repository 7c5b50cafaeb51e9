// Application in the system's running object table, where other programs look for Excel.
#pragma once

#include "host/objects/application_object_windows.h"

namespace qcalc {

/// Entered for as long as it lives. A program id that the system does not know is made known meanwhile.
class RunningObject {
 public:
  /// Throws std::runtime_error where the system does not take it.
  RunningObject(const std::wstring& programId, ObjectOffice& office, ApplicationObject& application);
  ~RunningObject();
  RunningObject(const RunningObject&) = delete;
  RunningObject& operator=(const RunningObject&) = delete;

 private:
  const std::wstring key_;
  std::atomic<int>& references_;
  bool hasKey_ = false;
  int ofTable_ = 0;  ///< references that the table holds, which are none of the add-in's
  DWORD place_ = 0;
};

}  // namespace qcalc
