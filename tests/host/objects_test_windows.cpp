// Excel's windows and objects, asked from outside as an add-in asks them.
#include <windows.h>
// Behind it: these need its types.
#include <oleacc.h>
#include <oleauto.h>

#include <sstream>
#include <thread>

#include "host/objects/variants_windows.h"
#include "tests/host/session_fixture.h"

namespace qcalc {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

std::string Hex(HRESULT code) {
  std::ostringstream text;
  text << std::hex << static_cast<unsigned long>(code);
  return text.str();
}

/// What a member gives, with at most one argument: a number, or a text. `code` is that of the step that failed.
Variant Ask(IDispatch* object, const std::string& member, const std::string& argument, HRESULT& code) {
  std::wstring name(member.begin(), member.end());
  LPOLESTR names = name.data();
  DISPID id = 0;
  if (FAILED(code = object->GetIDsOfNames(IID_NULL, &names, 1, 0, &id))) return {};
  const bool isNumber = !argument.empty() && argument.find_first_not_of("0123456789") == argument.npos;
  const Variant given =
      isNumber ? Variant::OfLong(std::stol(argument)) : Variant::OfText(std::wstring(argument.begin(), argument.end()));
  VARIANT arguments[] = {given.Get()}, result;
  VariantInit(&result);
  DISPPARAMS parameters{arguments, nullptr, argument.empty() ? 0u : 1u, 0};
  EXCEPINFO exception{};
  code = object->Invoke(id, IID_NULL, 0, DISPATCH_METHOD | DISPATCH_PROPERTYGET, &parameters, &result, &exception,
                        nullptr);
  if (code == DISP_E_EXCEPTION) code = exception.scode;
  SysFreeString(exception.bstrSource);
  SysFreeString(exception.bstrDescription);
  return Variant::Holding(result);
}

/// What `Member.Member:argument.Member` gives as a text; an error of a cell, and the failure of a step, as HRESULTs.
std::string Follow(IDispatch* object, const std::string& path) {
  std::istringstream members(path);
  Variant held;
  for (std::string member; std::getline(members, member, '.');) {
    const std::size_t colon = std::min(member.find(':'), member.size());
    HRESULT code = S_OK;
    Variant next = Ask(object, member.substr(0, colon), member.substr(std::min(colon + 1, member.size())), code);
    if (FAILED(code)) return Hex(code);
    held = std::move(next);
    if (held.Get().vt == VT_DISPATCH) object = held.Get().pdispVal;
  }
  return held.Get().vt == VT_ERROR ? "error " + Hex(held.Get().scode) : PrintLiteral(ValueOf(held.Get()));
}

/// The main window of this process: others may have theirs.
HWND Main() {
  HWND window = nullptr;
  DWORD process = 0;
  while ((window = FindWindowExW(nullptr, window, L"XLMAIN", L"Microsoft Excel")))
    if (GetWindowThreadProcessId(window, &process) != 0 && process == GetCurrentProcessId()) break;
  return window;
}

HWND BookWindow() {
  const HWND desktop = FindWindowExW(Main(), nullptr, L"XLDESK", nullptr);
  return FindWindowExW(desktop, nullptr, L"EXCEL7", nullptr);
}

class Objects : public SessionTest {
 protected:
  ~Objects() override { LetGo(); }

  /// Gets the window's object anew.
  HRESULT Get() {
    LetGo();
    return AccessibleObjectFromWindow(BookWindow(), static_cast<DWORD>(OBJID_NATIVEOM), IID_IDispatch,
                                      reinterpret_cast<void**>(&window));
  }
  void LetGo() {
    if (IDispatch* const held = std::exchange(window, nullptr)) held->Release();
  }

  IDispatch* window = nullptr;
};

TEST_F(Objects, TellOfBooksSheetsAndUsedRowsOnEveryThread) {
  session.CurrentSheet().Set({2, 8, 1, 3}, Value::Number(1));
  session.Open();
  EXPECT_EQ(Evaluate("=CALLED(16392)"), std::to_string(static_cast<long>(reinterpret_cast<INT_PTR>(Main()))));
  ASSERT_EQ(Get(), S_OK);
  const auto check = [&] {
    for (const auto& [path, result] : CasesOf(R"(
        Name -> "Microsoft Excel" | Version -> "16.0" | DisplayAlerts -> TRUE | OnCalculate -> "" | Rows -> 80020006
        Name:1 -> 8002000e | Workbooks.Count -> 1 | Workbooks.Item:book1.Name -> "Book1" | Workbooks.Item:2 -> 8002000b
        Workbooks.Item:1.Worksheets.Item:Sheet1.UsedRange.Address -> "$B$3:$D$9" | Workbooks.Item -> 8002000e
        Workbooks.Item:1.Worksheets.Item:1.UsedRange.Row -> 3 | Workbooks.Item:1.Worksheets.Item:1.UsedRange.Count -> 21
        Workbooks.Item:1.Worksheets.Item:1.UsedRange.Rows.Count -> 7 | Workbooks.Item:1.Worksheets.Count -> 2
        Workbooks.Item:1.Worksheets.Item:1.UsedRange.Parent.Parent.Parent.Version -> "16.0"
        Workbooks.Item:1.Worksheets.Item:Calc.UsedRange.Address -> "$A$1")"))
      EXPECT_EQ(Follow(window, "Application." + path), result) << path;
  };
  check();
  std::thread(check).join();
  EXPECT_EQ(session.Objects().CountReferences(), 1);
}

TEST_F(Objects, EvaluateMacroTextsWhileAlertsAreOff) {
  session.Open();
  ASSERT_EQ(Get(), S_OK);
  EXPECT_EQ(Follow(window, "Application.ExecuteExcel4Macro:PLUS(1)"), "error 800a07ed");
  EXPECT_THAT(Complaints(), ElementsAre(HasSubstr("while alerts were on")));
  session.Host().application.PutProperty(ApplicationState::kAlerts, Value::Boolean(false));
  EXPECT_EQ(Follow(window, "Application.ExecuteExcel4Macro:1/0"), "error 800a07d7");
  EXPECT_EQ(Follow(window, "Application.ExecuteExcel4Macro:IRR(1)"), "800a03ec") << "which the host has not";
}

TEST_F(Objects, RefuseOnDemand) {
  ObjectRefusals& refusals = session.Host().refusals;
  const auto refuse = [&](const char* name, std::uint32_t code, int nth) {
    refusals.Stop();
    refusals.TakeUnmet();
    refusals.Refuse(name, static_cast<std::int32_t>(code), nth);
  };
  session.Open();
  ASSERT_EQ(Get(), S_OK);
  for (const char* name : {"Name", "Invoke", "GetIDsOfNames", "any"}) {
    const bool isMember = std::string(name) == "Name";
    refuse(name, 0x8001010A, isMember ? 1 : std::string(name) == "any" ? 4 : 2);
    EXPECT_EQ(Follow(window, "Application.Name"), "8001010a") << name;
    EXPECT_EQ(Follow(window, "Application.Name"), "\"Microsoft Excel\"") << name << ", once";
  }
  refuse("AccessibleObjectFromWindow", 0x80010108, 0);
  EXPECT_EQ(Hex(Get()), "80010108");
  refuse("EnumChildWindows", 0x80010108, 0);
  session.Objects().ShowBooks();
  EXPECT_EQ(BookWindow(), nullptr);
  refuse("any", 0x80010108, 9);
  refusals.Stop();
  EXPECT_THAT(refusals.TakeUnmet(), ElementsAre("any, call 9: there were 0 calls"));
}

TEST_F(Objects, KeepAccountOfWhatIsLeftWhenTheAddinGoes) {
  session.Objects().Settings().hasBookWindows = false;
  session.Open();
  EXPECT_EQ(BookWindow(), nullptr);
  session.Objects().AllowBookWindows();
  ASSERT_EQ(Get(), S_OK);
  for (const XStringView event : ApplicationState::kEvents)
    session.Host().application.PutProperty(event, Value::Text(XTEXT("Nobody's")));
  Evaluate("=1");
  session.SelectSheet(session.CurrentSheet().ItsBook().SheetNamed(XTEXT("Other")));
  EXPECT_THAT(Complaints(), ElementsAre(HasSubstr("OnCalculate"), HasSubstr("Deactivate"), HasSubstr("OnSheetActiv")));
  CoInitialize(nullptr);
  session.Finish();
  EXPECT_THAT(Complaints(),
              ElementsAre(HasSubstr("1 to Window"), HasSubstr("left Nobody's in OnSheetActivate"),
                          HasSubstr("left Nobody's"), HasSubstr("in OnCalculate"), HasSubstr("left COM initialised")));
}

// A reader of used rows may need it until the library is gone, unless it was removed before it was closed.
TEST_F(Objects, LeaveApplicationToAnAddinThatIsOnlyClosed) {
  for (const bool isRemoved : {false, true}) {
    session.Open();
    ASSERT_EQ(Get(), S_OK);
    HRESULT code = S_OK;
    Ask(window, "Application", "", code).Detach();  // and lost
    LetGo();
    if (isRemoved) session.CallEntryPoint("xlAutoRemove");
    session.Finish();
    if (isRemoved) {
      EXPECT_THAT(Complaints(), ElementsAre(HasSubstr("1 to Application")));
    } else {
      EXPECT_THAT(Complaints(), IsEmpty());
    }
  }
}

TEST_F(Objects, GoWithTheSession) {
  IDispatch* application = nullptr;
  HRESULT code = S_OK;
  {
    Session other(ProgramFolder() / "misbehaving.xll");
    other.Open();
    ASSERT_EQ(Get(), S_OK);
    application = Ask(window, "Application", "", code).Detach().pdispVal;
    window->Release();
    LetGo();
    EXPECT_THAT(other.Host().complaints.Take(), ElementsAre("a reference to Window was released once too often"));
  }
  WNDCLASSEXW description{};
  for (const wchar_t* name : {L"XLMAIN", L"XLDESK", L"EXCEL7"})
    EXPECT_FALSE(GetClassInfoExW(GetModuleHandleW(nullptr), name, &description)) << name;
  EXPECT_EQ(Follow(application, "Name"), "80010108");
  EXPECT_EQ(application->Release(), 0u);
}

}  // namespace
}  // namespace qcalc
