// The bridge to the object model where scripts cannot reach: its one instance, the table of running objects, and macro
// texts, which nothing in the add-in runs.
#include <gtest/gtest.h>

#include "excel/com/excel_com.h"
#include "excel/com/find_application_windows.h"
#include "excel/com/held_application_windows.h"
#include "excel/com/xll_com_windows.h"
#include "frame/app/xll_app.h"
#include "tests/unit/fixtures/addin_excel.h"
#include "tests/unit/fixtures/raised_message.h"

namespace quillmere::testing {
namespace {

// COM's interfaces have no destructors.
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

/// An Application object with alerts, macros and a window. Calls may be made to fail, GetIDsOfNames by its code, Invoke
/// by an exception.
struct FakeApplication : IDispatch {
  int references = 1, calls = 0, failing = 0, failures = 1;  ///< the first call to fail, and how many do
  HRESULT failure = E_ACCESSDENIED;
  ComVariant alerts{true};
  HWND window = nullptr;

  HRESULT Count() { return ++calls >= failing && calls < failing + failures ? failure : S_OK; }

  STDMETHODIMP QueryInterface(REFIID id, void** object) override {
    if (id != IID_IUnknown && id != IID_IDispatch) return E_NOINTERFACE;
    AddRef();
    *object = this;
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return static_cast<ULONG>(++references); }
  STDMETHODIMP_(ULONG) Release() override { return static_cast<ULONG>(--references); }
  STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* id) override {
    *id = **names;
    return Count();
  }
  STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD kind, DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception,
                      UINT*) override {
    exception->scode = Count();
    if (FAILED(exception->scode)) return DISP_E_EXCEPTION;
    if (id == XTEXT('D') && kind == DISPATCH_PROPERTYPUT) return VariantCopy(&alerts.Raw(), parameters->rgvarg);
    if (id == XTEXT('D')) return VariantCopy(result, &alerts.Raw());
    result->vt = VT_I4;
    result->lVal = static_cast<LONG>(reinterpret_cast<INT_PTR>(window));
    if (id == XTEXT('H')) return S_OK;
    EXPECT_EQ(alerts.Integer(), 0) << "while the macro runs";
    EXPECT_STREQ(parameters->rgvarg[0].bstrVal, XTEXT("SIN(1)"));
    result->lVal = 42;
    return S_OK;
  }
};

TEST(ComBridge, IsOneAndStartsOnceInALife) {
  EXPECT_EQ(MessageOf<CXlRuntimeException>([] { CXllComImpl bridge; }), XTEXT("No CXllApp instance found"));
  CXllApp app;
  ExcelCom().Initialise();
  EXPECT_EQ(MessageOf<CXlRuntimeException>([] { CXllComImpl second; }),
            XTEXT("An instance of CXllCom has already been created"));
  EXPECT_EQ(MessageOf<CXlRuntimeException>([] { ExcelCom().Initialise(); }), XTEXT("Init() has already been called"));
  ExcelCom().DisconnectAndUninitialise(true);
}

TEST(ComBridge, RunsMacroTextsWithoutAlertsAndRestoresThem) {
  CXllApp app;
  CXllComImpl& bridge = dynamic_cast<CXllComImpl&>(ExcelCom());
  ComVariant result;
  EXPECT_EQ(bridge.ExecuteExcel4Macro(XTEXT("SIN(1)"), result), CO_E_OBJNOTCONNECTED);
  const auto run = [&](FakeApplication& application) {
    result.Receive();
    HeldApplication().Hold(ComReference<IDispatch>(&application));
    const HRESULT code = bridge.ExecuteExcel4Macro(XTEXT("SIN(1)"), result);
    HeldApplication().Hold({});
    EXPECT_EQ(application.references, 1);
    return code;
  };
  // Getting, switching off, running and restoring take two calls each; one after the last does not come.
  for (int failing = 1; failing <= 9; ++failing) {
    FakeApplication application;
    application.failing = failing;
    EXPECT_EQ(run(application), failing <= 6 ? E_ACCESSDENIED : S_OK) << failing;
    EXPECT_EQ(application.alerts.Integer(), -1) << failing;
    EXPECT_EQ(result.Integer(), failing <= 6 ? 0 : 42) << failing;
  }
  // What the alerts are, which calls fail with what; what comes of it after how many calls.
  constexpr auto kBusy = static_cast<HRESULT>(0x800AC472);
  const std::tuple<const XCHAR*, int, int, HRESULT, HRESULT, int> cases[] = {
      {XTEXT("0"), 0, 0, S_OK, S_OK, 4},
      {XTEXT("-1"), 0, 0, S_OK, S_OK, 8},
      {XTEXT("maybe"), 0, 0, S_OK, DISP_E_TYPEMISMATCH, 2},
      {XTEXT("0"), 1, 9, RPC_E_CALL_REJECTED, S_OK, 13},
      {XTEXT("0"), 2, 99, kBusy, kBusy, 11},
      {XTEXT("-1"), 6, 1, RPC_E_DISCONNECTED, RPC_E_DISCONNECTED, 6},
  };
  for (const auto& [alerts, failing, failures, failure, expected, calls] : cases) {
    FakeApplication application;
    application.failing = failing, application.failures = failures, application.failure = failure;
    application.alerts.Receive()->vt = VT_BSTR;
    application.alerts.Raw().bstrVal = SysAllocString(alerts);
    EXPECT_EQ(run(application), expected);
    EXPECT_EQ(application.calls, calls);
  }
}

TEST(ComBridge, TakesARunningApplicationOfThisProcessAlone) {
  AddinExcel excel;
  CoInitialize(nullptr);
  const CLSID id = {0x5EED0001, 0, 0, {}};
  OLECHAR idText[39];
  StringFromGUID2(id, idText, std::size(idText));
  RegSetKeyValueW(HKEY_CLASSES_ROOT, XTEXT("Excel.Application.5\\CLSID"), nullptr, REG_SZ, idText, sizeof idText);
  FakeApplication application;
  DWORD running = 0;
  RegisterActiveObject(&application, id, ACTIVEOBJECT_STRONG, &running);
  application.window = GetDesktopWindow();
  EXPECT_EQ(MessageOf<CXlRuntimeException>([] { FindApplication(); }),
            XTEXT("EnumChildWindows failed with error code 0x80070490"));
  application.window = CreateWindowW(XTEXT("STATIC"), nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
  EXPECT_EQ(FindApplication().Get(), &application);
  DestroyWindow(application.window);
  RevokeActiveObject(running, nullptr);
  RegDeleteTreeW(HKEY_CLASSES_ROOT, XTEXT("Excel.Application.5"));
  CoUninitialize();
}

}  // namespace
}  // namespace quillmere::testing
