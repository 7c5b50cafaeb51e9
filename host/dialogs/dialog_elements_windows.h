// What a dialog draws itself, for those who ask for accessible elements.
#pragma once

#include <oleacc.h>
#include <windows.h>

#include <vector>

#include "host/dialogs/dialog_layout_windows.h"

namespace qcalc {

// Interfaces of COM have no destructor of their own.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

/// The accessible object of a dialog's client area. Its elements are simple ones, numbered from 1. It is counted: made
/// with one reference, which is the dialog's.
class DialogElements final : public IAccessible {
 public:
  explicit DialogElements(HWND dialog) : dialog_(dialog) {}

  void Show(const std::vector<DrawnElement>& elements);
  /// The dialog is gone: from now on every question fails.
  void Detach() { dialog_ = nullptr; }

  STDMETHODIMP QueryInterface(REFIID id, void** object) override;
  STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
  STDMETHODIMP_(ULONG) Release() override;

  STDMETHODIMP GetTypeInfoCount(UINT* count) override;
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
    return E_NOTIMPL;
  }

  STDMETHODIMP get_accParent(IDispatch** parent) override;
  STDMETHODIMP get_accChildCount(long* count) override;
  STDMETHODIMP get_accChild(VARIANT child, IDispatch** object) override;
  STDMETHODIMP get_accName(VARIANT child, BSTR* name) override;
  STDMETHODIMP get_accRole(VARIANT child, VARIANT* role) override;
  STDMETHODIMP get_accState(VARIANT child, VARIANT* state) override;
  STDMETHODIMP accLocation(long* left, long* top, long* width, long* height, VARIANT child) override;
  STDMETHODIMP accHitTest(long left, long top, VARIANT* child) override;

  STDMETHODIMP get_accValue(VARIANT, BSTR*) override { return DISP_E_MEMBERNOTFOUND; }
  STDMETHODIMP get_accDescription(VARIANT, BSTR*) override { return DISP_E_MEMBERNOTFOUND; }
  STDMETHODIMP get_accHelp(VARIANT, BSTR*) override { return DISP_E_MEMBERNOTFOUND; }
  STDMETHODIMP get_accHelpTopic(BSTR*, VARIANT, long*) override { return DISP_E_MEMBERNOTFOUND; }
  STDMETHODIMP get_accKeyboardShortcut(VARIANT, BSTR*) override { return DISP_E_MEMBERNOTFOUND; }
  STDMETHODIMP get_accFocus(VARIANT*) override { return DISP_E_MEMBERNOTFOUND; }
  STDMETHODIMP get_accSelection(VARIANT*) override { return DISP_E_MEMBERNOTFOUND; }
  STDMETHODIMP get_accDefaultAction(VARIANT, BSTR*) override { return DISP_E_MEMBERNOTFOUND; }
  STDMETHODIMP accSelect(long, VARIANT) override { return DISP_E_MEMBERNOTFOUND; }
  STDMETHODIMP accNavigate(long, VARIANT, VARIANT*) override { return DISP_E_MEMBERNOTFOUND; }
  STDMETHODIMP accDoDefaultAction(VARIANT) override { return DISP_E_MEMBERNOTFOUND; }
  STDMETHODIMP put_accName(VARIANT, BSTR) override { return DISP_E_MEMBERNOTFOUND; }
  STDMETHODIMP put_accValue(VARIANT, BSTR) override { return DISP_E_MEMBERNOTFOUND; }

 private:
  ~DialogElements() = default;

  /// S_OK when `child` is the dialog itself, which leaves `element` null, or one of its elements.
  HRESULT Find(const VARIANT& child, const DrawnElement** element) const;

  HWND dialog_;
  std::vector<DrawnElement> elements_;
  ULONG references_ = 1;
};

#pragma GCC diagnostic pop

}  // namespace qcalc
