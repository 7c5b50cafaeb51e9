// Installing and removing the hooks of the function wizard's extension.
#include <gtest/gtest.h>

#include "excel/wizard/wizard_hook_windows.h"
#include "tests/unit/fixtures/raised_message.h"

namespace quillmere {
namespace {

using testing::MessageOf;

TEST(WizardHook, IsInstalledOnceAndLeavesNothing) {
  const auto install = [] { CWizardHook(0, 16); };
  {
    const CWizardHook hook(0, 16);
    EXPECT_EQ(MessageOf<CXlRuntimeException>(install), L"An instance of CWizardHook is already installed");
  }
  EXPECT_EQ(MessageOf<CXlRuntimeException>(install), L"") << "and what was registered before is gone";
  EXPECT_EQ(MessageOf<CXlRuntimeException>([] { InstalledHook(99, L"WH_KEYBOARD", nullptr); }),
            L"SetWindowsHookEx failed for WH_KEYBOARD. hr=593");
}

}  // namespace
}  // namespace quillmere
