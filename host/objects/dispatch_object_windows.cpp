#include "host/objects/dispatch_object_windows.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <new>

#include "host/text/utf8.h"

namespace qcalc {
namespace {

constexpr const wchar_t* kSource = L"Microsoft Excel";

/// What a variant passed by reference stands for.
const VARIANT& Behind(const VARIANT& variant) {
  return variant.vt == (VT_BYREF | VT_VARIANT) && variant.pvarVal ? *variant.pvarVal : variant;
}

bool IsDispatchCode(HRESULT code) { return HRESULT_FACILITY(code) == FACILITY_DISPATCH; }

HRESULT Report(const ObjectFailure& failure, EXCEPINFO* exception, UINT* badArgument) {
  if (badArgument) *badArgument = failure.argument;
  if (IsDispatchCode(failure.code) || failure.code == RPC_E_DISCONNECTED) return failure.code;
  if (!exception) return DISP_E_EXCEPTION;
  *exception = {};
  exception->scode = failure.code;
  exception->bstrSource = SysAllocString(kSource);
  const XString description = FromUtf8(failure.description).value_or(XString());
  exception->bstrDescription = SysAllocStringLen(description.data(), static_cast<UINT>(description.size()));
  return DISP_E_EXCEPTION;
}

}  // namespace

const VARIANT* ObjectCall::At(UINT index) const {
  if (index >= Count()) return nullptr;
  const VARIANT& argument = Behind(parameters_.rgvarg[Count() - 1 - index]);
  const bool isLeftOut = argument.vt == VT_ERROR && argument.scode == DISP_E_PARAMNOTFOUND;
  return isLeftOut ? nullptr : &argument;
}

Variant ObjectCall::AtAs(UINT index, VARTYPE type) const {
  const VARIANT* const argument = At(index);
  if (!argument) throw ObjectFailure{DISP_E_PARAMNOTOPTIONAL};
  VARIANT converted;
  VariantInit(&converted);
  constexpr LCID kEnglish = MAKELCID(MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US), SORT_DEFAULT);
  if (FAILED(VariantChangeTypeEx(&converted, const_cast<VARIANT*>(argument), kEnglish, 0, type)))
    throw ObjectFailure{DISP_E_TYPEMISMATCH, {}, Count() - 1 - index};
  return Variant::Holding(converted);
}

bool ObjectCall::BooleanAt(UINT index, bool otherwise) const {
  return At(index) ? AtAs(index, VT_BOOL).Get().boolVal != VARIANT_FALSE : otherwise;
}

LONG ObjectCall::LongAt(UINT index, LONG otherwise) const {
  return At(index) ? AtAs(index, VT_I4).Get().lVal : otherwise;
}

HostState& DispatchObject::Host() const {
  HostState* const host = office_->host;
  if (!host) throw ObjectFailure{RPC_E_DISCONNECTED};
  return *host;
}

HRESULT DispatchObject::QueryInterface(REFIID id, void** object) {
  if (!object) return E_POINTER;
  *object = nullptr;
  if (!IsEqualIID(id, IID_IUnknown) && !IsEqualIID(id, IID_IDispatch)) return E_NOINTERFACE;
  *object = static_cast<IDispatch*>(this);
  AddRef();
  return S_OK;
}

Variant DispatchObject::ItsApplication(const ObjectCall&) {
  IDispatch* const application = office_->application;
  if (!application) throw ObjectFailure{RPC_E_DISCONNECTED};
  application->AddRef();
  return Variant::OfObject(application);
}

ULONG DispatchObject::AddRef() {
  ++OutsideReferences();
  return ++references_;
}

ULONG DispatchObject::Release() {
  if (isKept_ && references_ == 1) {
    if (HostState* const host = office_->host)
      host->complaints.Add(std::string("a reference to ") + NameOf(kind_) + " was released once too often");
    return 1;
  }
  --OutsideReferences();
  const ULONG left = --references_;
  if (left == 0) delete this;
  return left;
}

void DispatchObject::LetGo() {
  isKept_ = false;
  if (--references_ == 0) delete this;
}

HRESULT DispatchObject::GetTypeInfoCount(UINT* count) {
  if (!count) return E_POINTER;
  *count = 0;
  return S_OK;
}

HRESULT DispatchObject::GetTypeInfo(UINT, LCID, ITypeInfo** info) {
  if (info) *info = nullptr;
  return E_NOTIMPL;
}

HRESULT DispatchObject::GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
  HostState* const host = office_->host;
  if (!host) return RPC_E_DISCONNECTED;
  if (const auto refused = host->refusals.Count(kGetIdsOfNames)) return *refused;
  if (!IsEqualIID(reserved, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
  if (!names || !ids || count == 0) return E_INVALIDARG;
  std::fill_n(ids, count, DISPID_UNKNOWN);
  for (std::size_t i = 0; i < members_.size(); ++i)
    if (lstrcmpiW(members_[i].name, names[0]) == 0) ids[0] = static_cast<DISPID>(i) + 1;
  // No argument has a name here.
  return ids[0] == DISPID_UNKNOWN || count > 1 ? DISP_E_UNKNOWNNAME : S_OK;
}

HRESULT DispatchObject::Invoke(DISPID id, REFIID reserved, LCID, WORD kinds, DISPPARAMS* parameters, VARIANT* result,
                               EXCEPINFO* exception, UINT* badArgument) {
  // Nothing may run through the add-in.
  try {
    HostState& host = Host();
    const bool isKnown = id >= 1 && id <= static_cast<DISPID>(members_.size());
    const ObjectMember* const member = isKnown ? &members_[static_cast<std::size_t>(id) - 1] : nullptr;
    if (const auto refused = host.refusals.Count(kInvoke, member ? ToUtf8(member->name) : std::string()))
      return *refused;
    if (!IsEqualIID(reserved, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
    if (!parameters) return E_INVALIDARG;
    if (!member) return DISP_E_MEMBERNOTFOUND;
    return Call(*member, kinds, *parameters, result);
  } catch (const ObjectFailure& failure) {
    return Report(failure, exception, badArgument);
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (const std::exception& error) {
    return Report({kExcelError, error.what()}, exception, badArgument);
  } catch (...) {
    return Report({kExcelError}, exception, badArgument);  // cells that are not calculated, functions out of place
  }
}

HRESULT DispatchObject::Call(const ObjectMember& member, WORD kinds, const DISPPARAMS& parameters, VARIANT* result) {
  if ((member.kinds & kinds) == 0) return DISP_E_MEMBERNOTFOUND;
  const bool isPut = (member.kinds & kinds & DISPATCH_PROPERTYPUT) != 0 && (kinds & DISPATCH_PROPERTYGET) == 0;
  const bool namesPut = parameters.cNamedArgs == 1 && parameters.rgdispidNamedArgs[0] == DISPID_PROPERTYPUT;
  if (isPut && !namesPut) return DISP_E_PARAMNOTFOUND;
  if (!isPut && parameters.cNamedArgs > 0) return DISP_E_NONAMEDARGS;
  const UINT values = isPut ? 1 : 0;
  if (parameters.cArgs < member.fewest + values || parameters.cArgs > member.most + values) return DISP_E_BADPARAMCOUNT;
  Variant answer = member.invoke(*this, ObjectCall(parameters, isPut));
  if (result) *result = answer.Detach();
  return S_OK;
}

}  // namespace qcalc
