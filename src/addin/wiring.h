// What the frame knows by interfaces alone, put together.
#pragma once

#include "frame/app/xll_app.h"

namespace quillmere {

/// Hands the frame and the application object all that other rooms bring: who tells a sheet's used rows, the bridge to
/// Excel's object model, the ribbon, who hears of Excel's events, the extension of the function wizard. Before
/// Excel calls anything.
void WireTheFrame(CXllApp& app);

}  // namespace quillmere
