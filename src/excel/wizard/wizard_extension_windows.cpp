#include <memory>

#include "excel/wizard/wizard_extension.h"
#include "excel/wizard/wizard_hook_windows.h"
#include "frame/entry/process_end.h"

namespace quillmere {
namespace {

class WizardExtension final : public IXllOpenHook, public IXllCloseHook {
 public:
  void OnOpen(const CXllOpenContext& context) override {
    hook_ = std::make_unique<CWizardHook>(ExcelWindow(), context.excel.version);
  }
  void OnClose() override { hook_.reset(); }

 private:
  std::unique_ptr<CWizardHook> hook_;
};

constinit CUntilUnloaded<WizardExtension> extension;

}  // namespace

IXllOpenHook& WizardOpenHook() noexcept { return *extension; }
IXllCloseHook& WizardCloseHook() noexcept { return *extension; }

}  // namespace quillmere
