// The extension of Excel's Function Arguments dialog: lists for arguments that take one of a few coded values.
#pragma once

#include "frame/app/hooks.h"

namespace quillmere {

/// What installs the extension when the add-in opens, and what removes it when it closes; both do nothing where there
/// are no windows. For the whole life of the process.
IXllOpenHook& WizardOpenHook() noexcept;
IXllCloseHook& WizardCloseHook() noexcept;

}  // namespace quillmere
