// The application object: opening, closing and removing of the add-in, and what it answers to Excel's Add-in Manager.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "frame/app/excel_interfaces.h"
#include "frame/app/hooks.h"
#include "frame/errors/exceptions.h"
#include "frame/registration/registration.h"
#include "frame/values/xl_oper.h"

namespace quillmere {

/// The one application object of the process. It is made by a static object of the add-in before Excel calls any entry
/// point. All operations but TranslateError run on Excel's main thread; nothing leaves the static ones.
class CXllApp {
 public:
  /// Makes this object the instance, if there is none yet.
  CXllApp() noexcept;
  CXllApp(const CXllApp&) = delete;
  CXllApp& operator=(const CXllApp&) = delete;
  virtual ~CXllApp();

  /// The instance; null when none was made.
  static CXllApp* Instance() noexcept;
  /// Whether the add-in was opened with success.
  static bool IsOpened() noexcept;

  // The entry points.

  /// 1 when the add-in has been opened by this call, 0 when that failed or it is open already: neither closed nor
  /// removed since it was opened.
  static int AutoOpen() noexcept;
  /// Always 1. Nothing is unregistered: functions go on working.
  static int AutoClose() noexcept;
  static int AutoAdd() noexcept;
  /// Always 1. Unregisters everything.
  static int AutoRemove() noexcept;
  /// The add-in's long name for the action 1, else #VALUE!. The result is overwritten by the next call.
  static XLOPER12* AddInManagerInfo12(XLOPER12* action) noexcept;
  static XLOPER* AddInManagerInfo4(XLOPER* action) noexcept;
  static int CheckInstance() noexcept;

  /// Has `clear` called whenever the add-in is closed, opened or not: it empties the memory that formulas keep in the
  /// process.
  static void SetFormulaMemoryClearer(void (*clear)()) noexcept;

  virtual void OnAutoAdd() {}
  virtual bool AutoAddResult() { return true; }
  virtual void OnAutoRemove() {}
  virtual void OnBeforeOpen() {}
  /// Prepares the add-in; false ends the opening. Registering with Excel comes later.
  virtual bool Open();
  virtual void OnClose() {}
  virtual void OnOpened() {}
  /// Builds the function table from the records; false ends the opening.
  virtual bool RegisterFunctions();
  virtual XString GetAddinLongName() const { return displayName_; }
  /// The add-in's name in texts and macro names; empty when the add-in has none of its own.
  virtual XString GetModuleName() const { return {}; }
  /// What the add-in is announced by: the category of its functions, the ribbon's title.
  virtual XString GetTitle() const { return Name(); }
  /// Asks the user whether to go on without what failed to register.
  virtual bool ConfirmLoadAfterFailures();
  /// Writes an exception raised by a worksheet function into the cell's result. Any thread.
  virtual void TranslateError(CXlOper& result, const CXlRuntimeException& error) const;
  /// Answers an event of the ribbon: `callback` says which of a control's callbacks it is, `id` and `tag` are the
  /// control's, the others what the event tells. FALSE where the control is not known.
  virtual CXlOper OnRibbonCallback(std::int32_t callback, XStringView id, XStringView tag, std::int32_t index,
                                   XStringView text, XStringView selectedId, bool pressed);
  /// Told of each event of Excel's application object, by its name ("OnCalculate").
  virtual void OnApplicationEvent(XStringView) {}

  /// The module name if known, else the display name, else the path, else "Add-in".
  XString Name() const;
  /// The add-in's full path as Excel has it; empty before it is opened.
  XStringView ModulePath() const noexcept { return modulePath_; }
  XStringView HelpFilePath() const noexcept { return helpFilePath_; }
  const std::vector<std::unique_ptr<CXllRegistrable>>& Registrables() const noexcept { return registrables_; }

  // What is given here must outlive the application object.

  void AddOpenHook(IXllOpenHook& hook) { openHooks_.push_back(&hook); }
  void AddCloseHook(IXllCloseHook& hook) { closeHooks_.push_back(&hook); }
  void SetCom(IXllCom& com) noexcept { com_ = &com; }
  void SetRibbon(IXlpRibbonImpl& ribbon) noexcept { ribbon_ = &ribbon; }
  void SetObserver(IXllObserver& observer) noexcept { observer_ = &observer; }

 protected:
  void SetHelpFilePath(XString path) { helpFilePath_ = std::move(path); }
  /// The directory of the add-in, without a separator at its end; empty for a path without one.
  XStringView ModuleDirectory() const noexcept;
  /// Creates a function object for each record, from the head of their list; returns their number.
  std::size_t BuildFunctionTable();
  void SetCategoryOfAll(XStringView category);
  /// Asks the user in a box owned by Excel's main window; true for Yes.
  virtual bool AskYesNo(const XString& text, const XString& caption);

 private:
  bool RunOpening();
  void ReadModulePath();
  void ConnectRibbon();
  void SetDefaultHelpFilePath();
  bool RegisterAll();
  void UnregisterAll() noexcept;
  void RollBack() noexcept;
  void CallCloseHooks() noexcept;
  void DisconnectRibbon() noexcept;
  void DisconnectCom(bool removed) noexcept;
  void Close() noexcept;
  void Remove() noexcept;

  XString modulePath_;
  XString displayName_;
  XString helpFilePath_;
  std::vector<std::unique_ptr<CXllRegistrable>> registrables_;
  std::vector<std::unique_ptr<CXllRegistrable>> leftRegistered_;  ///< by openings before, and closed since
  std::vector<IXllOpenHook*> openHooks_;
  std::vector<IXllCloseHook*> closeHooks_;
  CXllComNull noCom_;
  CXlpRibbonImplNull noRibbon_;
  CXllObserverNull noObserver_;
  IXllCom* com_ = &noCom_;
  IXlpRibbonImpl* ribbon_ = &noRibbon_;
  IXllObserver* observer_ = &noObserver_;
  bool closed_ = false;   ///< xlAutoClose has done its work
  bool removed_ = false;  ///< xlAutoRemove has done its work
};

}  // namespace quillmere
