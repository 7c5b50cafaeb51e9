#include "host/objects/application_object_windows.h"

#include "host/addin/call_context.h"
#include "host/addin/text_evaluation.h"
#include "host/objects/book_objects_windows.h"

namespace qcalc {
namespace {

using Object = ApplicationObject;

constexpr WORD kGetAndPut = DISPATCH_PROPERTYGET | DISPATCH_PROPERTYPUT;

constexpr ObjectMember kApplicationMembers[] = {
    Member<DispatchObject, &DispatchObject::ItsApplication>(L"Application"),
    Member<DispatchObject, &DispatchObject::ItsApplication>(L"Parent"),
    Member<Object, &Object::Workbooks>(L"Workbooks"),
    Member<Object, &Object::Name>(L"Name"),
    Member<Object, &Object::Version>(L"Version"),
    Member<Object, &Object::Hwnd>(L"Hwnd"),
    Member<Object, &Object::ExecuteExcel4Macro>(L"ExecuteExcel4Macro", DISPATCH_METHOD, 1),
    Member<Object, &Object::DisplayAlerts>(L"DisplayAlerts", kGetAndPut),
    Member<Object, &Object::OnSheetActivate>(L"OnSheetActivate", kGetAndPut),
    Member<Object, &Object::OnSheetDeactivate>(L"OnSheetDeactivate", kGetAndPut),
    Member<Object, &Object::OnCalculate>(L"OnCalculate", kGetAndPut),
};

constexpr ObjectMember kWindowMembers[] = {
    Member<DispatchObject, &DispatchObject::ItsApplication>(L"Application"),
};

}  // namespace

ApplicationObject::ApplicationObject(std::shared_ptr<ObjectOffice> office)
    : DispatchObject(std::move(office), ObjectKind::kApplication, kApplicationMembers) {}

Variant ApplicationObject::Workbooks(const ObjectCall&) { return Make<WorkbooksObject>(); }
Variant ApplicationObject::Name(const ObjectCall&) { return Variant::OfText(XTEXT("Microsoft Excel")); }
Variant ApplicationObject::Version(const ObjectCall&) { return Variant::OfText(Host().settings.version); }

Variant ApplicationObject::Hwnd(const ObjectCall&) {
  return Variant::OfLong(static_cast<LONG>(reinterpret_cast<INT_PTR>(Office()->mainWindow.load())));
}

Variant ApplicationObject::ExecuteExcel4Macro(const ObjectCall& call) {
  CheckMainThread("ExecuteExcel4Macro");
  HostState& host = Host();
  if (host.application.ShowsAlerts())
    host.complaints.Add("ExecuteExcel4Macro ran while alerts were on: one would have waited for a person");
  const Value text = ValueOf(call.AtAs(0, VT_BSTR).Get());
  const CallContext* const current = CallContext::Current();
  const EvaluationContext plain{&host.workbooks};
  const EvaluationContext& context = current ? current->evaluation : plain;
  return Variant::Of(Dereference(EvaluateText(text.AsText(), host, context), host.workbooks));
}

Variant ApplicationObject::Property(XStringView name, VARTYPE type, const ObjectCall& call) {
  ApplicationState& state = Host().application;
  if (!call.IsPut()) return Variant::Of(*state.Property(name));
  CheckMainThread("a property put");
  state.PutProperty(name, ValueOf(call.AtAs(0, type).Get()));
  return {};
}

void ApplicationObject::CheckMainThread(const char* member) const {
  if (!Host().mainThread.IsCurrent())
    Host().complaints.Add(std::string(member) + " was called from another thread than the main one");
}

WindowObject::WindowObject(std::shared_ptr<ObjectOffice> office)
    : DispatchObject(std::move(office), ObjectKind::kWindow, kWindowMembers) {}

}  // namespace qcalc
