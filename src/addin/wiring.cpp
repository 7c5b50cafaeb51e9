#include "addin/wiring.h"

#include "excel/events/observer.h"
#include "excel/used_range/used_range_reader.h"
#include "frame/callbacks/used_range.h"

namespace quillmere {
void WireTheFrame(CXllApp& app) {
  SetUsedRangeReader(&UsedRangeReader());
  app.SetObserver(Observer());
}

}  // namespace quillmere
