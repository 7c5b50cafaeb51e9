#include "excel/events/application_event.h"

#include "excel/events/event_table.h"
#include "excel/used_range/used_range_reader.h"
#include "frame/app/xll_app.h"
#include "frame/call/plain_call.h"
#include "frame/entry/export.h"
#include "frame/values/kept_blocks.h"

namespace quillmere {

void OnApplicationEvent(XStringView event) noexcept {
  CallPlain([event] {
    ReleaseIdleBlocks();
    UsedRangeReader().Forget(kStoreWait);
    if (CXllApp* const app = CXllApp::Instance()) app->OnApplicationEvent(event);
    return 0;
  });
}

namespace {

/// What a command returns to Excel when it has run.
constexpr std::int16_t kRan = 1;

std::int16_t RunEventCommand(std::size_t event) {
  OnApplicationEvent(kApplicationEvents[event]);
  return kRan;
}

}  // namespace
}  // namespace quillmere

// The commands that Excel runs on its events, in the order of the event table.

XLL_EXPORT std::int16_t CXllComImpl_OnSheetActivate() { return quillmere::RunEventCommand(0); }

XLL_EXPORT std::int16_t CXllComImpl_OnSheetDeactivate() { return quillmere::RunEventCommand(1); }

XLL_EXPORT std::int16_t CXllComImpl_OnCalculate() { return quillmere::RunEventCommand(2); }
