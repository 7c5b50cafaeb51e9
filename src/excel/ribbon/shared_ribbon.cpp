#include "excel/ribbon/shared_ribbon.h"

#include <utility>

#include "frame/app/xll_app.h"
#include "frame/callbacks/callbacks.h"
#include "frame/callbacks/excel_settings.h"

namespace quillmere {
namespace {

constexpr XStringView kServer = XTEXT("XlpRibbonServer.XlpRtdRibbonServer");
constexpr XStringView kConnecting = XTEXT("<");
constexpr XStringView kDisconnecting = XTEXT(">");

/// Tells the server the add-in's name and `topics`; whether it answered with anything but an error.
template <class... Topics>
bool Tell(const Topics&... topics) {
  const CXllApp* const app = CXllApp::Instance();
  if (!app) return false;
  CXlOper answer;
  const int code = CallExcelForCode(answer, xlfRtd, CXlOper::Text(kServer), CXlOper::Missing(),
                                    CXlOper::Text(app->Name()), topics...);
  return code == xlretSuccess && !answer.IsError();
}

}  // namespace

bool CXlpRibbonImplShared::SetWantsConnection(bool wanted) { return std::exchange(wantsConnection_, wanted); }

bool CXlpRibbonImplShared::IsExcel12OrLater() const { return CurrentExcelSettings().excel12OrLater; }

bool CXlpRibbonImplShared::Connect() { return Tell(CXlOper::Text(kConnecting)); }

void CXlpRibbonImplShared::Disconnect() { Tell(CXlOper::Text(kDisconnecting)); }

void CXlpRibbonImplShared::SendNothing() { Tell(); }

void CXlpRibbonImplShared::SendTitle() {
  if (const CXllApp* const app = CXllApp::Instance()) Tell(CXlOper::Text(app->GetTitle()));
}

void CXlpRibbonImplShared::SendNumber(double number) { Tell(CXlOper::Number(number)); }

}  // namespace quillmere
