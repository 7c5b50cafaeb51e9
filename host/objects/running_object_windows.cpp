#include "host/objects/running_object_windows.h"

// It needs the types of windows.h.
#include <ole2.h>

#include <stdexcept>

namespace qcalc {
namespace {

// The class of Excel's Application, as Excel registers it.
constexpr const wchar_t* kClass = L"{00024500-0000-0000-C000-000000000046}";

}  // namespace

RunningObject::RunningObject(const std::wstring& programId, ObjectOffice& office, ApplicationObject& application)
    : key_(L"Software\\Classes\\" + programId), references_(office.ReferencesTo(ObjectKind::kApplication)) {
  CLSID id;
  if (FAILED(CLSIDFromProgID(programId.c_str(), &id))) {
    // For this user alone it is not seen under Wine.
    HKEY key = nullptr;
    hasKey_ = RegCreateKeyExW(HKEY_LOCAL_MACHINE, (key_ + L"\\CLSID").c_str(), 0, nullptr, REG_OPTION_VOLATILE,
                              KEY_ALL_ACCESS, nullptr, &key, nullptr) == ERROR_SUCCESS;
    const auto bytes = static_cast<DWORD>((wcslen(kClass) + 1) * sizeof(wchar_t));
    if (hasKey_) RegSetValueExW(key, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(kClass), bytes);
    if (hasKey_) RegCloseKey(key);
    CLSIDFromString(kClass, &id);
  }
  const int before = references_;
  const HRESULT code = RegisterActiveObject(&application, id, ACTIVEOBJECT_WEAK, &place_);
  if (FAILED(code)) {
    if (hasKey_) RegDeleteTreeW(HKEY_LOCAL_MACHINE, key_.c_str());
    throw std::runtime_error("the running object table did not take Application");
  }
  ofTable_ = references_ - before;
  references_ -= ofTable_;
}

RunningObject::~RunningObject() {
  references_ += ofTable_;
  RevokeActiveObject(place_, nullptr);
  if (hasKey_) RegDeleteTreeW(HKEY_LOCAL_MACHINE, key_.c_str());
}

}  // namespace qcalc
