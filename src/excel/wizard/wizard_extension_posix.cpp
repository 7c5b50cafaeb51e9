#include "excel/wizard/wizard_extension.h"

namespace quillmere {
namespace {

class NoExtension final : public IXllOpenHook, public IXllCloseHook {
 public:
  void OnOpen(const CXllOpenContext&) override {}
  void OnClose() override {}
};

constinit NoExtension extension;

}  // namespace

IXllOpenHook& WizardOpenHook() noexcept { return extension; }
IXllCloseHook& WizardCloseHook() noexcept { return extension; }

}  // namespace quillmere
