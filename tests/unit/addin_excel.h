// An Excel that add-ins can be opened in: it answers what an opening asks, keeps the registered functions and notes the
// alerts.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "fake_excel.h"
#include "frame/app/xll_app.h"

namespace quillmere::testing {

class AddinExcel : public FakeExcel {
 public:
  AddinExcel();
  /// What the add-in learnt here, it forgets.
  ~AddinExcel();

  XString path = XTEXT("C:\\AddIns\\Quillmere4.xll");
  XString version = XTEXT("16.0");
  bool coercesVersion = true;
  std::set<XString> refused;             ///< names that registering answers with #VALUE!
  std::map<double, XString> registered;  ///< names by register id; the ids are negative
  std::set<XString> hiddenNames;         ///< names left behind for commands
  std::vector<std::vector<CXlOper>> registerCalls;
  std::vector<XString> unregisterSteps;  ///< "unregister NAME", "register NAME", "delete NAME"
  std::vector<XString> alerts;
  std::vector<double> alertKinds;

 private:
  int Coerce(const XLOPER12& value, XLOPER12& result);
  int Register(std::span<XLOPER12* const> arguments, XLOPER12& result);
  int Unregister(const XLOPER12& id, XLOPER12& result);

  double nextId_ = -1;
};

/// An application object without records of its own name; what it is told is noted in `events`.
class TestApp : public CXllApp {
 public:
  bool openAnswer = true;
  bool questionAnswer = false;
  XString moduleName;
  std::vector<std::string> events;
  std::vector<XString> questions;

  void OnAutoAdd() override { events.push_back("OnAutoAdd"); }
  void OnAutoRemove() override { events.push_back("OnAutoRemove"); }
  void OnBeforeOpen() override { events.push_back("OnBeforeOpen"); }
  bool Open() override;
  void OnClose() override { events.push_back("OnClose"); }
  void OnOpened() override { events.push_back("OnOpened"); }
  XString GetModuleName() const override { return moduleName; }

 protected:
  bool AskYesNo(const XString& text, const XString& caption) override;
};

}  // namespace quillmere::testing
