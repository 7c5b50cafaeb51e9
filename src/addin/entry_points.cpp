// The functions that Excel calls by name, each a thin forwarder, and the add-in's one application object.
#include "addin/quillmere4_app.h"
#include "frame/app/dialogs.h"
#include "frame/app/executable_type.h"
#include "frame/call/fault_guard.h"
#include "frame/call/plain_call.h"
#include "frame/callbacks/callbacks.h"
#include "frame/entry/callback_scope.h"
#include "frame/entry/export.h"
#include "frame/entry/process_end.h"
#include "frame/text/ansi_text.h"
#include "frame/values/value_memory.h"
#include "frame/values/xl_oper4.h"

using quillmere::CXllApp;

namespace {
quillmere::CUntilUnloaded<quillmere::CQuillmere4App> application;
}  // namespace

XLL_EXPORT int xlAutoOpen() { return CXllApp::AutoOpen(); }

XLL_EXPORT int xlAutoClose() { return CXllApp::AutoClose(); }

XLL_EXPORT int xlAutoAdd() { return CXllApp::AutoAdd(); }

XLL_EXPORT int xlAutoRemove() { return CXllApp::AutoRemove(); }

XLL_EXPORT XLOPER12* xlAddInManagerInfo12(XLOPER12* action) { return CXllApp::AddInManagerInfo12(action); }

XLL_EXPORT XLOPER* xlAddInManagerInfo(XLOPER* action) { return CXllApp::AddInManagerInfo4(action); }

XLL_EXPORT void xlAutoFree12(XLOPER12* value) {
  if (value) quillmere::ReleaseOwned(*value);
}

XLL_EXPORT void xlAutoFree(XLOPER* value) {
  if (value) quillmere::ReleaseOwned4(*value);
}

XLL_EXPORT void SetExcel12EntryPt(XlMdCallBack12 entry) { quillmere::InstallExcel12Entry(entry); }

XLL_EXPORT int xlCheckInstance() { return CXllApp::CheckInstance(); }

/// Shows `path` (ANSI code page) and returns the binary type of that file, -1 when it has none or no path can be read.
XLL_EXPORT std::int32_t l64BitExe(const char* path) {
  return quillmere::CallPlain([path] {
    if (!path) return quillmere::kPlainCallFailed;
    const XString text = quillmere::WidenAnsi(path);
    {
      // Whatever the host's windows do meanwhile is the host's own.
      const quillmere::CallbackScope host;
      quillmere::ShowMessageBox(0, text, XTEXT("Display String ByVal"), quillmere::MessageBoxForm::kInformation);
    }
    return quillmere::BinaryTypeOf(path);
  });
}
