// Installing and removing the hooks of the function wizard's extension.
#include <gtest/gtest.h>

#include "excel/wizard/wizard_hook_windows.h"
#include "frame/errors/exceptions.h"

namespace quillmere {
namespace {

template <class Step>
XString FailureOf(const Step& step) {
  try {
    step();
  } catch (const CXlRuntimeException& error) {
    return XString(error.Message());
  }
  return {};
}

TEST(WizardHook, IsInstalledOnceAndLeavesNothing) {
  const auto install = [] { CWizardHook(0, 16); };
  {
    const CWizardHook hook(0, 16);
    EXPECT_EQ(FailureOf(install), L"An instance of CWizardHook is already installed");
  }
  EXPECT_EQ(FailureOf(install), L"") << "and what was registered before is gone";
  EXPECT_EQ(FailureOf([] { InstalledHook(99, L"WH_KEYBOARD", nullptr); }),
            L"SetWindowsHookEx failed for WH_KEYBOARD. hr=593");
}

}  // namespace
}  // namespace quillmere
