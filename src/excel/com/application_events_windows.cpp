#include "excel/com/application_events_windows.h"

#include "excel/com/late_bound_windows.h"
#include "excel/events/event_table.h"
#include "frame/callbacks/excel_settings.h"
#include "frame/text/string_formatter.h"

namespace quillmere {
namespace {

constexpr XStringView kMacroName = XTEXT("xll_{0}_{1}");

std::unique_ptr<CXllRegistrable> EventCommand(XStringView addinName, XStringView event) {
  return std::make_unique<CXllRegistrable>(RegistrationTexts{.procedure = XString(kEventCommandPrefix) + XString(event),
                                                             .typeText = XTEXT("I"),
                                                             .name = psl::Format(kMacroName, {addinName, event}),
                                                             .macroType = MacroType::kCommand});
}

/// Empties the property if it still names our command.
ComOutcome ClearProperty(IDispatch& application, const XCHAR* property, XStringView macroName) noexcept {
  ComVariant named;
  const ComOutcome outcome = GetProperty(application, property, named, WhenBusy::kWait);
  if (!outcome || !named.IsText(macroName)) return outcome;
  return PutProperty(application, property, XStringView(), WhenBusy::kWait);
}

}  // namespace

void CApplicationEvents::Connect(IDispatch& application, XStringView addinName, XStringView modulePath) {
  for (const XStringView event : kApplicationEvents) {
    const XCHAR* const property = event.data();  // of the table, which holds literals
    std::unique_ptr<CXllRegistrable> command = EventCommand(addinName, event);
    ComVariant named;
    GetProperty(application, property, named, WhenBusy::kWait).ThrowIfFailed();
    if (!named.IsEmpty() && !named.IsText(command->Name())) continue;
    wired_.push_back({property, std::move(command)});
    CXllRegistrable& registered = *wired_.back().command;
    registered.Register(modulePath, {});
    if (registered.IsRegistered())
      PutProperty(application, property, registered.Name(), WhenBusy::kWait).ThrowIfFailed();
  }
}

void CApplicationEvents::Disconnect(ComReference<IDispatch>& application, XStringView modulePath) noexcept {
  for (const Wired& each : wired_) {
    if (application && MeansVanished(ClearProperty(*application, each.property, each.command->Name()).result))
      application = ComReference<IDispatch>();
    each.command->Unregister(modulePath, CurrentExcelSettings().excel12OrLater);
  }
  wired_.clear();
}

}  // namespace quillmere
