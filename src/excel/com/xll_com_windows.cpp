#include "excel/com/xll_com_windows.h"

#include <optional>

#include "excel/com/find_application_windows.h"
#include "excel/com/held_application_windows.h"
#include "excel/com/late_bound_windows.h"
#include "excel/com/macro_text_windows.h"
#include "excel/com/ole_fix_windows.h"
#include "frame/app/xll_app.h"
#include "frame/errors/exceptions.h"

namespace quillmere {
namespace {

constexpr XStringView kNoApp = XTEXT("No CXllApp instance found");
constexpr XStringView kSecondInstance = XTEXT("An instance of CXllCom has already been created");
constexpr XStringView kSecondInit = XTEXT("Init() has already been called");

CXllComImpl* theInstance = nullptr;

XStringView ModulePath() noexcept {
  const CXllApp* const app = CXllApp::Instance();
  return app ? app->ModulePath() : XStringView();
}

}  // namespace

CXllComImpl::CXllComImpl() {
  if (!CXllApp::Instance()) throw CXlRuntimeException(kNoApp);
  if (theInstance) throw CXlRuntimeException(kSecondInstance);
  theInstance = this;
}

CXllComImpl::~CXllComImpl() { theInstance = nullptr; }

void CXllComImpl::Initialise() {
  if (initialised_) throw CXlRuntimeException(kSecondInit);
  // An Excel that has prepared this thread in another way keeps that way, which serves as well.
  const HRESULT started = CoInitialize(nullptr);
  if (FAILED(started) && started != RPC_E_CHANGED_MODE) throw CXlComException(XTEXT("CoInitialize"), started);
  startedCom_ = SUCCEEDED(started);
  initialised_ = true;
}

void CXllComImpl::Connect() {
  std::optional<InitExcelOleFix> workbook;
  if (!HasWorkbookWindow()) workbook.emplace();
  HeldApplication().Hold(FindApplication());
}

void CXllComImpl::ConnectEvents(XStringView name) {
  const ComReference<IDispatch> application = HeldApplication().Get();
  if (!application) return;
  try {
    events_.Connect(*application, name, ModulePath());
  } catch (const CXlComException& failure) {
    if (MeansVanished(failure.Result())) HeldApplication().Drop(application);
    throw;
  }
}

void CXllComImpl::DisconnectAndUninitialise(bool removed) {
  ComReference<IDispatch> application = HeldApplication().Get();
  events_.Disconnect(application, ModulePath());
  if (removed) application = ComReference<IDispatch>();
  HeldApplication().Hold(std::move(application));
  initialised_ = false;
  if (std::exchange(startedCom_, false)) CoUninitialize();
}

HRESULT CXllComImpl::ExecuteExcel4Macro(XStringView macro, ComVariant& result) noexcept {
  const ComReference<IDispatch> application = HeldApplication().Get();
  if (!application) return CO_E_OBJNOTCONNECTED;
  const HRESULT ran = RunMacroText(*application, macro, result);
  if (MeansVanished(ran)) HeldApplication().Drop(application);
  return ran;
}

}  // namespace quillmere
