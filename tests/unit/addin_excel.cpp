#include "addin_excel.h"

#include <gtest/gtest.h>

#include "frame/callbacks/excel_settings.h"
#include "frame/values/cell.h"

namespace quillmere::testing {
namespace {

constexpr int kVersionCall = int{xlfGetWorkspace} | xlIntl;

}  // namespace

AddinExcel::AddinExcel() {
  On(kVersionCall, [this](auto, XLOPER12& result) {
    result = LendText(version);
    return xlretSuccess;
  });
  On(xlfGetWorkspace, [this](auto, XLOPER12& result) {
    const XLOPER12 unread = NumberCell(49);
    const XLOPER12 comma = LendText(XTEXT(","));
    const XLOPER12 row = LendText(XTEXT("Z"));
    const XLOPER12 column = LendText(XTEXT("S"));
    result = LendArray(1, 7, {unread, unread, comma, unread, unread, row, column});
    return xlretSuccess;
  });
  On(xlCoerce, [this](auto arguments, XLOPER12& result) { return Coerce(*arguments[0], result); });
  On(xlGetName, [this](auto, XLOPER12& result) {
    result = LendText(path);
    return xlretSuccess;
  });
  On(xlfRegister, [this](auto arguments, XLOPER12& result) { return Register(arguments, result); });
  On(xlfUnregister, [this](auto arguments, XLOPER12& result) { return Unregister(*arguments[0], result); });
  On(xlfSetName, [this](auto arguments, XLOPER12& result) {
    EXPECT_EQ(arguments.size(), 1u);
    unregisterSteps.push_back(XTEXT("delete ") + XString(CellText(*arguments[0])));
    hiddenNames.erase(XString(CellText(*arguments[0])));
    result = BooleanCell(true);
    return xlretSuccess;
  });
  On(xlcAlert, [this](auto arguments, XLOPER12& result) {
    alerts.emplace_back(CellText(*arguments[0]));
    alertKinds.push_back(CellNumber(*arguments[1]));
    result = BooleanCell(true);
    return xlretSuccess;
  });
}

AddinExcel::~AddinExcel() {
  CurrentExcelSettings() = {};
  SetDecimalSeparator(XTEXT('.'));
}

int AddinExcel::Coerce(const XLOPER12& value, XLOPER12& result) {
  if (IsNumberCell(value)) {
    result = IntegerCell(static_cast<std::int32_t>(value.val.num));
    return xlretSuccess;
  }
  if (!IsTextCell(value) || CellText(value) != version || !coercesVersion) return xlretFailed;
  result = IntegerCell(version[0] == XTEXT('1') ? 10 + (version[1] - XTEXT('0')) : version[0] - XTEXT('0'));
  return xlretSuccess;
}

int AddinExcel::Register(std::span<XLOPER12* const> arguments, XLOPER12& result) {
  const XString name(CellText(*arguments[3]));
  const bool isHiding = CellText(*arguments[1]) == XTEXT("xlAutoRemove");
  if (isHiding) {
    unregisterSteps.push_back(XTEXT("register ") + name);
    hiddenNames.insert(name);
  } else {
    std::vector<CXlOper>& call = registerCalls.emplace_back();
    for (const XLOPER12* argument : arguments) call.push_back(CXlOper::FromCell(*argument));
  }
  if (refused.contains(name)) {
    result = ErrorCell(xlerrValue);
    return xlretSuccess;
  }
  registered[nextId_] = name;
  result = NumberCell(nextId_--);
  return xlretSuccess;
}

int AddinExcel::Unregister(const XLOPER12& id, XLOPER12& result) {
  const auto found = registered.find(CellNumber(id));
  EXPECT_NE(found, registered.end()) << "unregistered what is not registered";
  if (found == registered.end()) return xlretFailed;
  unregisterSteps.push_back(XTEXT("unregister ") + found->second);
  registered.erase(found);
  result = BooleanCell(true);
  return xlretSuccess;
}

bool TestApp::Open() {
  events.push_back("Open");
  return CXllApp::Open() && openAnswer;
}

bool TestApp::AskYesNo(const XString& text, const XString& caption) {
  EXPECT_EQ(caption, XTEXT("Add-in Load Failure"));
  questions.push_back(text);
  return questionAnswer;
}

}  // namespace quillmere::testing
