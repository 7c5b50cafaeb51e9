#include "excel/events/observer.h"

#include "excel/events/application_event.h"
#include "excel/events/event_table.h"
#include "frame/callbacks/excel_settings.h"
#include "frame/entry/export.h"

namespace quillmere {
namespace {

constinit CXllObserver theObserver;

}  // namespace

std::unique_ptr<CXllRegistrable> CXllObserver::CreateCommand(XStringView addinName) {
  const bool isWide = CurrentExcelSettings().excel12OrLater;
  RegistrationTexts texts;
  texts.procedure = isWide ? XTEXT("CXlApp_ObserverEventHandler12") : XTEXT("CXlApp_ObserverEventHandler4");
  texts.typeText = isWide ? XTEXT("RJQQQ") : XTEXT("RJPPP");
  texts.name = XTEXT("xll_") + XString(addinName) + XTEXT("_observer");
  texts.argumentText = XTEXT("EventNumber,Arg1,Arg2,Arg3");
  texts.macroType = MacroType::kCommand;
  texts.category = XTEXT("User Defined");
  auto command = std::make_unique<CXllRegistrable>(std::move(texts));
  isCreated_ = isLive_ = true;
  return command;
}

bool CXllObserver::OnEvent(std::int32_t eventNumber) noexcept {
  const bool isKnown = eventNumber >= 1 && static_cast<std::size_t>(eventNumber) <= kApplicationEvents.size();
  if (!isKnown || !isLive_) return false;
  OnApplicationEvent(kApplicationEvents[static_cast<std::size_t>(eventNumber) - 1]);
  return true;
}

CXllObserver& Observer() noexcept { return theObserver; }

namespace {

// Both handlers are registered with "R", an 8-bit value, as what they return. They own nothing and are never written.
constinit XLOPER yes = {{.xbool = 1}, xltypeBool};
constinit XLOPER no = {{.xbool = 0}, xltypeBool};

XLOPER* HandleEvent(std::int32_t eventNumber) { return Observer().OnEvent(eventNumber) ? &yes : &no; }

}  // namespace
}  // namespace quillmere

/// What the observer command runs: TRUE when the event was acted on. The events of the table bring no arguments.
XLL_EXPORT XLOPER* CXlApp_ObserverEventHandler12(std::int32_t eventNumber, XLOPER12*, XLOPER12*, XLOPER12*) {
  return quillmere::HandleEvent(eventNumber);
}

XLL_EXPORT XLOPER* CXlApp_ObserverEventHandler4(std::int32_t eventNumber, XLOPER*, XLOPER*, XLOPER*) {
  return quillmere::HandleEvent(eventNumber);
}
