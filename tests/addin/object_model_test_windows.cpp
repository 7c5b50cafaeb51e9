// The bridge to Excel's object model as the host sees it: every call of an opening and a closing refused in turn, the
// references that are left, and used rows while Excel is busy or gone.
#include <windows.h>

#include "host/addin/evaluation_watch.h"
#include "host/library/import_table_windows.h"
#include "tests/host/session_fixture.h"

namespace qcalc {
namespace {

using ::testing::HasSubstr;

constexpr auto kDenied = static_cast<std::int32_t>(0x80070005);
constexpr auto kBusy = static_cast<std::int32_t>(0x800AC472);
constexpr auto kVanished = static_cast<std::int32_t>(0x80010108);
constexpr const char* kNoMacros = R"("""""")";

class ObjectModelOfHost : public SessionTest {
 protected:
  ObjectModelOfHost() : SessionTest("Quillmere4.xll") {}

  void Refuse(const char* step, std::int32_t code, int nth = 0) { session.Host().refusals.Refuse(step, code, nth); }
  /// Whether what was refused since the last look was asked for.
  bool WasMet() { return TakeUnmet(session.Host()).empty(); }

  /// The alert of an opening that fails, and leaves nothing behind then; "" of one that does not.
  std::string Open() {
    ::testing::internal::CaptureStderr();
    const int opened = session.CallOpen();
    const std::string alert = ::testing::internal::GetCapturedStderr();
    EXPECT_EQ(alert.empty(), opened == 1) << alert;
    EXPECT_EQ(session.Host().registry.All().empty(), opened == 0);
    EXPECT_EQ(References(), opened == 0 ? "" : "1 to Application");
    EXPECT_EQ(session.ItsWorkbooks().Books().size(), 1u);
    EXPECT_TRUE(session.Host().application.Echo());
    return alert;
  }
  void Call(const char* entryPoint) { EXPECT_EQ(session.CallEntryPoint(entryPoint), 1); }
  std::string References() { return session.Objects().DescribeReferences(); }
  std::string Macros() {
    std::string macros;
    for (const XStringView event : ApplicationState::kEvents)
      macros += PrintLiteral(*session.Host().application.Property(event));
    return macros;
  }
};

TEST_F(ObjectModelOfHost, TellsWhichStepFailed) {
  // The book that is open gets a window with the first new one.
  session.Objects().Settings().hasBookWindows = false;
  const std::pair<const char*, std::string> cases[] = {
      {"xlcNew", "InitExcelOleFix() failed to create new workbook with error 0x80040020\n"},
      {"xlcEcho", "InitExcelOleFix() failed to switch off workbook echo with error 0x80040020\n"},
      {"EnumChildWindows", "EnumChildWindows failed with error code 0x80070490\n"},
      {"AccessibleObjectFromWindow", "AccessibleObjectFromWindow failed with error code 0x80070005\n"},
      {"GetIDsOfNames", "GetIDsOfNames failed with error code 0x80070005\n"},
      {"Application", "Invoke failed with error code 0x80070005\n"},
  };
  for (const auto& [step, told] : cases) {
    if (const XlCallback* callback = FindXlCallback(step))
      session.Host().meter.Fail(*callback, xlretFailed, 1);
    else
      Refuse(step, kDenied);
    EXPECT_THAT(Open(), HasSubstr(told + "Quillmere4 will not be opened"));
    session.Finish();
    if (!FindXlCallback(step)) session.Objects().Settings().hasBookWindows = true;
  }
  for (const int nth : {1, 2, 3}) Refuse("Application", kBusy, nth);
  EXPECT_EQ(Open(), "") << "it is asked again";
  Call("xlAutoClose");
  const auto failToStart = +[](void*) -> HRESULT { return E_OUTOFMEMORY; };
  const ImportPatch patches[] = {{"CoInitialize", reinterpret_cast<void*>(failToStart)}};
  PatchImports(*session.Host().library, patches);
  EXPECT_THAT(Open(), HasSubstr("CoInitialize failed with error code 0x8007000E"));
}

TEST_F(ObjectModelOfHost, OpensAndClosesWhicheverCallFails) {
  int refused = 0;
  for (Refuse("any", kDenied, 1);; Refuse("any", kDenied, ++refused + 1)) {
    const std::string alert = Open();
    if (!WasMet()) break;
    EXPECT_THAT(alert, HasSubstr("failed with error code 0x80070005")) << refused;
  }
  EXPECT_GE(refused, 15);
  for (int nth = 1; WasMet(); ++nth) {
    Call("xlAutoRemove");
    Refuse("any", nth % 2 ? kDenied : kVanished, nth);
    Call("xlAutoClose");
    EXPECT_EQ(References(), "") << nth;
    EXPECT_TRUE(session.Host().registry.All().empty()) << nth;
    EXPECT_EQ(Open(), "");
  }
}

TEST_F(ObjectModelOfHost, CutsAfterABareCloseToo) {
  session.CurrentSheet().Set({0, 9, 0, 0}, Value::Number(7));
  // The runs of rows above 5, as empty cells are too.
  const std::string above = "=FILTER.MATCH(0,A:A,0,1,\">5\")", cut = "{1,10}", whole = "{1,1048576}";
  EXPECT_EQ(Evaluate(above), cut);
  Call("xlAutoClose");
  EXPECT_EQ(References() + Macros(), "1 to Application" + std::string(kNoMacros));
  for (const char* step : {"Workbooks", "Item", "Worksheets", "UsedRange", "Row", "Rows", "Count"}) {
    Refuse(step, kBusy, 1);
    EXPECT_EQ(Evaluate(above), whole) << "a calculation does not wait for an Excel that is busy: " << step;
  }
  EXPECT_EQ(Evaluate(above), cut);
  EXPECT_EQ(Open(), "") << "the old reference is let go of";
  Refuse("UsedRange", kVanished, 1);
  EXPECT_EQ(Evaluate(above), whole);
  EXPECT_EQ(References(), "");
  Refuse("any", kDenied);
  EXPECT_EQ(Evaluate(above), whole);
  EXPECT_FALSE(WasMet()) << "no call goes to an Excel that has gone";
  session.Finish();
  EXPECT_THAT(Complaints(), ::testing::SizeIs(3)) << "nor to its properties";
}

TEST_F(ObjectModelOfHost, BearsOthersMacrosAndEveryModeOfCom) {
  ApplicationState& application = session.Host().application;
  for (const ComMode mode : {ComMode::kMultiThreaded, ComMode::kNone, ComMode::kSingleThreaded}) {
    session.Objects().Settings().mode = mode;
    application.PutForeignProperty(ApplicationState::kSheetActivated, Value::Text(XTEXT("A")));
    session.Reload(2);
    EXPECT_EQ(Macros(), R"("A""xll_Quillmere4_OnSheetDeactivate""xll_Quillmere4_OnCalculate")");
    application.PutForeignProperty(ApplicationState::kCalculated, Value::Text(XTEXT("B")));
    session.Finish();
    EXPECT_EQ(Macros(), R"("A""""B")");
    application.PutForeignProperty(ApplicationState::kCalculated, Value::Text({}));
  }
}

TEST_F(ObjectModelOfHost, LeavesAnEventUnheardWhoseCommandExcelRefuses) {
  EXPECT_EQ(Open(), "");
  const int commandOfTheLastEvent = static_cast<int>(session.Host().registry.All().size());
  session.Finish();
  session.Host().meter.Fail(*FindXlCallback("xlfRegister"), xlretFailed, commandOfTheLastEvent);
  EXPECT_EQ(Open(), "");
  EXPECT_EQ(Macros(), R"("xll_Quillmere4_OnSheetActivate""xll_Quillmere4_OnSheetDeactivate""")");
}

}  // namespace
}  // namespace qcalc
