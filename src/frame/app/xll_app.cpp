#include "frame/app/xll_app.h"

#include <algorithm>
#include <exception>
#include <iterator>

#include "frame/app/dialogs.h"
#include "frame/callbacks/callbacks.h"
#include "frame/callbacks/excel_window.h"
#include "frame/convert/error_result.h"
#include "frame/errors/current_exception.h"
#include "frame/text/text_cut.h"
#include "frame/values/kept_blocks.h"

namespace quillmere {
namespace {

CXllApp* theInstance = nullptr;
bool opened = false;
void (*formulaMemoryClearer)() = nullptr;

constexpr XStringView kNoInstance = XTEXT("No instance of CXllApp has been instantiated.");
constexpr XStringView kUnknownAddin = XTEXT("Add-in");
constexpr int kAlertError = 3;
/// Excel's alert takes no longer text.
constexpr std::size_t kMaxAlertText = 219;
constexpr std::size_t kExtensionLength = 3;
constexpr std::size_t kShortestPathWithExtension = 4;

/// Runs a step that the others must not depend on.
template <class Step>
void Quietly(const Step& step) noexcept {
  try {
    step();
  } catch (...) {
    // Excel is told nothing: it could do nothing about it.
  }
}

/// Tells the user why the add-in is not opened; called from a catch block.
void ShowOpeningFailure(const CXllApp* app) {
  const XString beginning = XTEXT("Unexpected error during initialization:\n");
  const XString end = XTEXT("\n") + (app ? app->Name() : XString(kUnknownAddin)) + XTEXT(" will not be opened");
  const std::size_t fixedLength = beginning.size() + end.size();
  const XString message = MessageOfCurrentException();
  const XStringView shown = CutText(message, kMaxAlertText - std::min(kMaxAlertText, fixedLength));
  CXlOper answer;
  CallExcelForCode(answer, xlcAlert, CXlOper::Text(beginning + XString(shown) + end), CXlOper::Number(kAlertError));
}

std::size_t FileNamePlace(XStringView path) {
  const std::size_t separator = path.find_last_of(XTEXT("\\/"));
  return separator == XStringView::npos ? 0 : separator + 1;
}

}  // namespace

CXllApp::CXllApp() noexcept {
  if (!theInstance) theInstance = this;
}

CXllApp::~CXllApp() {
  if (theInstance != this) return;
  theInstance = nullptr;
  opened = false;
}

CXllApp* CXllApp::Instance() noexcept { return theInstance; }

bool CXllApp::IsOpened() noexcept { return opened; }

void CXllApp::SetFormulaMemoryClearer(void (*clear)()) noexcept { formulaMemoryClearer = clear; }

int CXllApp::AutoOpen() noexcept {
  CXllApp* const app = theInstance;
  if (opened && !app->removed_ && !app->closed_) return 0;
  // What a removal alone has left connected is of the life that ends here.
  if (opened) app->Close();
  bool success = false;
  try {
    DetectExcelVersion();
    if (!app) throw CXlRuntimeException(kNoInstance);
    success = app->RunOpening();
  } catch (...) {
    Quietly([app] { ShowOpeningFailure(app); });
  }
  if (app && !success) app->RollBack();
  opened = success;
  if (success) Quietly([app] { app->OnOpened(); });
  return success ? 1 : 0;
}

int CXllApp::AutoClose() noexcept {
  if (theInstance) theInstance->Close();
  ReleaseKeptBlocks();
  return 1;
}

int CXllApp::AutoAdd() noexcept {
  int result = 0;
  Quietly([&result] {
    if (!theInstance) return;
    theInstance->OnAutoAdd();
    result = theInstance->AutoAddResult() ? 1 : 0;
  });
  return result;
}

int CXllApp::AutoRemove() noexcept {
  if (theInstance) theInstance->Remove();
  return 1;
}

int CXllApp::CheckInstance() noexcept {
  if (theInstance) Quietly([] { theInstance->observer_->MarkLive(); });
  return 1;
}

// ---- Opening

bool CXllApp::RunOpening() {
  closed_ = false;
  removed_ = false;
  // What a close has left registered is registered again over it, and stays to be unregistered as well: Excel counts.
  leftRegistered_.insert(leftRegistered_.end(), std::make_move_iterator(registrables_.begin()),
                         std::make_move_iterator(registrables_.end()));
  registrables_.clear();
  ReadLocalSettings();
  ReadModulePath();
  OnBeforeOpen();
  if (!Open()) return false;
  com_->Initialise();
  const CXllOpenContext context{modulePath_, displayName_, CurrentExcelSettings()};
  for (IXllOpenHook* const hook : openHooks_) hook->OnOpen(context);
  ConnectRibbon();
  SetDefaultHelpFilePath();
  if (std::unique_ptr<CXllRegistrable> command = observer_->CreateCommand(Name()))
    registrables_.push_back(std::move(command));
  if (!RegisterAll() && !ConfirmLoadAfterFailures()) return false;
  if (com_->IsInitialised()) {
    com_->Connect();
    com_->ConnectEvents(Name());
  }
  return true;
}

void CXllApp::ReadModulePath() {
  CXlOper path;
  if (const int code = CallExcelForCode(path, xlGetName); code != xlretSuccess) ThrowFailedCall(xlGetName, code);
  modulePath_ = path.AsText();
  const XStringView fileName = XStringView(modulePath_).substr(FileNamePlace(modulePath_));
  displayName_ = fileName.substr(0, fileName.find_last_of(XTEXT('.')));
}

void CXllApp::ConnectRibbon() {
  if (!ribbon_->WantsConnection() || !ribbon_->Connect()) return;
  com_->AttachRibbon(ribbon_);
  ribbon_->SendTitle();
}

void CXllApp::SetDefaultHelpFilePath() {
  if (!helpFilePath_.empty() || modulePath_.size() < kShortestPathWithExtension) return;
  helpFilePath_ = modulePath_.substr(0, modulePath_.size() - kExtensionLength) + XTEXT("chm");
}

bool CXllApp::Open() { return RegisterFunctions(); }

bool CXllApp::RegisterFunctions() {
  BuildFunctionTable();
  return true;
}

std::size_t CXllApp::BuildFunctionTable() {
  std::size_t count = 0;
  for (const CXllFunctionRecord* record = CXllFunctionRecord::Head(); record; record = record->Next()) {
    registrables_.push_back(std::make_unique<CXllFunction>(*record));
    ++count;
  }
  return count;
}

void CXllApp::SetCategoryOfAll(XStringView category) {
  for (const auto& registrable : registrables_) registrable->SetCategory(category);
}

/// Registers everything, whatever fails in between; true when nothing did.
bool CXllApp::RegisterAll() {
  for (const auto& registrable : registrables_) registrable->Register(modulePath_, helpFilePath_);
  return std::ranges::all_of(registrables_, [](const auto& registrable) { return registrable->IsRegistered(); });
}

bool CXllApp::ConfirmLoadAfterFailures() {
  XString names;
  for (const auto& registrable : registrables_) {
    if (registrable->IsRegistered()) continue;
    if (!names.empty()) names += XTEXT('\n');
    names += registrable->Name();
  }
  return AskYesNo(FormatCatalogue(MessageId::kFunctionsFailedToRegister, Name(), names),
                  XString(MessageText(MessageId::kAddInLoadFailure)));
}

bool CXllApp::AskYesNo(const XString& text, const XString& caption) {
  return ShowMessageBox(ExcelWindow(), text, caption, MessageBoxForm::kYesNoExclamation);
}

/// Takes back what an opening that failed has done.
void CXllApp::RollBack() noexcept {
  UnregisterAll();
  DisconnectRibbon();
  CallCloseHooks();
  DisconnectCom(/*removed=*/true);
  Quietly([this] { observer_->End(); });
}

void CXllApp::CallCloseHooks() noexcept {
  for (IXllCloseHook* const hook : closeHooks_) Quietly([hook] { hook->OnClose(); });
}

void CXllApp::DisconnectRibbon() noexcept {
  Quietly([this] {
    if (IXlpRibbonImpl* const attached = com_->AttachedRibbon()) {
      com_->AttachRibbon(nullptr);
      attached->Disconnect();
    }
  });
}

void CXllApp::DisconnectCom(bool removed) noexcept {
  Quietly([this, removed] { com_->DisconnectAndUninitialise(removed); });
}

void CXllApp::UnregisterAll() noexcept {
  for (const auto* const list : {&registrables_, &leftRegistered_})
    for (const auto& registrable : *list) registrable->Unregister(modulePath_, CurrentExcelSettings().excel12OrLater);
  leftRegistered_.clear();
}

// ---- Closing and removing

void CXllApp::Close() noexcept {
  if (closed_) return;
  closed_ = true;
  DisconnectRibbon();
  if (opened) {
    CallCloseHooks();
    Quietly([this] { OnClose(); });
  }
  DisconnectCom(removed_);
  Quietly([this] { observer_->End(); });
  if (formulaMemoryClearer) Quietly(formulaMemoryClearer);
}

void CXllApp::Remove() noexcept {
  if (!opened || removed_) return;
  removed_ = true;
  Quietly([this] { OnAutoRemove(); });
  UnregisterAll();
}

void CXllApp::TranslateError(CXlOper& result, const CXlRuntimeException& error) const { WriteError(result, error); }

CXlOper CXllApp::OnRibbonCallback(std::int32_t, XStringView, XStringView, std::int32_t, XStringView, XStringView,
                                  bool) {
  return CXlOper::Boolean(false);
}

XString CXllApp::Name() const {
  XString name = GetModuleName();
  if (name.empty()) name = displayName_;
  if (name.empty()) name = modulePath_;
  if (name.empty()) name = kUnknownAddin;
  return name;
}

XStringView CXllApp::ModuleDirectory() const noexcept {
  const std::size_t fileName = FileNamePlace(modulePath_);
  return fileName == 0 ? XStringView() : XStringView(modulePath_).substr(0, fileName - 1);
}

}  // namespace quillmere
