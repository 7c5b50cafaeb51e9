#include "host/dialogs/dialog_elements_windows.h"

#include <algorithm>
#include <iterator>

namespace qcalc {
namespace {

HRESULT Number(LONG number, VARIANT* result) {
  result->vt = VT_I4;
  result->lVal = number;
  return S_OK;
}

}  // namespace

void DialogElements::Show(const std::vector<DrawnElement>& elements) {
  elements_.clear();
  std::copy_if(elements.begin(), elements.end(), std::back_inserter(elements_),
               [](const DrawnElement& element) { return element.isNamed; });
}

STDMETHODIMP DialogElements::QueryInterface(REFIID id, void** object) {
  const bool isKnown = id == IID_IUnknown || id == IID_IDispatch || id == IID_IAccessible;
  *object = isKnown ? static_cast<IAccessible*>(this) : nullptr;
  if (!isKnown) return E_NOINTERFACE;
  AddRef();
  return S_OK;
}

STDMETHODIMP_(ULONG) DialogElements::Release() {
  const ULONG left = --references_;
  if (left == 0) delete this;
  return left;
}

STDMETHODIMP DialogElements::GetTypeInfoCount(UINT* count) {
  *count = 0;
  return S_OK;
}

HRESULT DialogElements::Find(const VARIANT& child, const DrawnElement** element) const {
  *element = nullptr;
  if (!dialog_) return CO_E_OBJNOTCONNECTED;
  if (child.vt != VT_I4) return E_INVALIDARG;
  if (child.lVal == CHILDID_SELF) return S_OK;
  if (child.lVal < 0 || static_cast<std::size_t>(child.lVal) > elements_.size()) return E_INVALIDARG;
  *element = &elements_[static_cast<std::size_t>(child.lVal - 1)];
  return S_OK;
}

STDMETHODIMP DialogElements::get_accParent(IDispatch** parent) {
  *parent = nullptr;
  return dialog_ ? AccessibleObjectFromWindow(dialog_, static_cast<DWORD>(OBJID_WINDOW), IID_IDispatch,
                                              reinterpret_cast<void**>(parent))
                 : CO_E_OBJNOTCONNECTED;
}

STDMETHODIMP DialogElements::get_accChildCount(long* count) {
  *count = static_cast<long>(elements_.size());
  return dialog_ ? S_OK : CO_E_OBJNOTCONNECTED;
}

STDMETHODIMP DialogElements::get_accChild(VARIANT child, IDispatch** object) {
  *object = nullptr;
  const DrawnElement* element;
  const HRESULT found = Find(child, &element);
  return found == S_OK ? S_FALSE : found;  // an element has no object of its own
}

STDMETHODIMP DialogElements::get_accName(VARIANT child, BSTR* name) {
  *name = nullptr;
  const DrawnElement* element;
  if (const HRESULT found = Find(child, &element); found != S_OK) return found;
  wchar_t title[256] = L"";
  if (!element) GetWindowTextW(dialog_, title, static_cast<int>(std::size(title)));
  *name = SysAllocString(element ? element->text.c_str() : title);
  return *name ? S_OK : E_OUTOFMEMORY;
}

STDMETHODIMP DialogElements::get_accRole(VARIANT child, VARIANT* role) {
  role->vt = VT_EMPTY;
  const DrawnElement* element;
  if (const HRESULT found = Find(child, &element); found != S_OK) return found;
  return Number(element ? element->role : ROLE_SYSTEM_DIALOG, role);
}

STDMETHODIMP DialogElements::get_accState(VARIANT child, VARIANT* state) {
  state->vt = VT_EMPTY;
  const DrawnElement* element;
  if (const HRESULT found = Find(child, &element); found != S_OK) return found;
  return Number(element ? STATE_SYSTEM_READONLY : 0, state);
}

STDMETHODIMP DialogElements::accLocation(long* left, long* top, long* width, long* height, VARIANT child) {
  *left = *top = *width = *height = 0;
  const DrawnElement* element;
  if (const HRESULT found = Find(child, &element); found != S_OK) return found;
  RECT place;
  if (element)
    place = element->place;
  else
    GetClientRect(dialog_, &place);
  MapWindowPoints(dialog_, nullptr, reinterpret_cast<POINT*>(&place), 2);
  *left = place.left;
  *top = place.top;
  *width = place.right - place.left;
  *height = place.bottom - place.top;
  return S_OK;
}

STDMETHODIMP DialogElements::accHitTest(long left, long top, VARIANT* child) {
  child->vt = VT_EMPTY;
  if (!dialog_) return CO_E_OBJNOTCONNECTED;
  POINT point{left, top};
  ScreenToClient(dialog_, &point);
  // The frame comes first and holds others.
  for (std::size_t i = elements_.size(); i-- > 0;)
    if (PtInRect(&elements_[i].place, point)) return Number(static_cast<LONG>(i + 1), child);
  RECT client;
  GetClientRect(dialog_, &client);
  return PtInRect(&client, point) ? Number(CHILDID_SELF, child) : S_FALSE;
}

}  // namespace qcalc
