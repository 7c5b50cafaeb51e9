// The bridge to Excel's object model, as the add-in's application object uses it.
#pragma once

#include "excel/com/application_events_windows.h"
#include "excel/com/com_values_windows.h"
#include "frame/app/excel_interfaces.h"

namespace quillmere {

/// One per process, on Excel's main thread. The Application object that it finds is held by HeldApplication.
class CXllComImpl final : public IXllCom {
 public:
  /// CXlRuntimeException when there is one already, or no application object.
  CXllComImpl();
  CXllComImpl(const CXllComImpl&) = delete;
  CXllComImpl& operator=(const CXllComImpl&) = delete;
  ~CXllComImpl() override;

  void Initialise() override;
  bool IsInitialised() const override { return initialised_; }
  void Connect() override;
  void ConnectEvents(XStringView name) override;
  void DisconnectAndUninitialise(bool removed) override;
  void AttachRibbon(IXlpRibbonImpl* ribbon) override { ribbon_ = ribbon; }
  IXlpRibbonImpl* AttachedRibbon() const override { return ribbon_; }

  /// Runs an Excel 4 macro text with alerts off; see RunMacroText. CO_E_OBJNOTCONNECTED without an Application object.
  HRESULT ExecuteExcel4Macro(XStringView macro, ComVariant& result) noexcept;

 private:
  bool initialised_ = false;
  bool startedCom_ = false;  ///< CoUninitialize is owed
  CApplicationEvents events_;
  IXlpRibbonImpl* ribbon_ = nullptr;
};

}  // namespace quillmere
