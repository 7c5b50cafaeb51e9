#include "addin/wiring.h"

#include "excel/com/excel_com.h"
#include "excel/events/observer.h"
#include "excel/ribbon/shared_ribbon.h"
#include "excel/used_range/used_range_reader.h"
#include "excel/wizard/wizard_extension.h"
#include "frame/callbacks/used_range.h"
#include "workbook/formula_memory.h"

namespace quillmere {
namespace {

constinit CXlpRibbonImplShared ribbon;

}  // namespace

void WireTheFrame(CXllApp& app) {
  SetUsedRangeReader(&UsedRangeReader());
  app.SetCom(ExcelCom());
  app.SetRibbon(ribbon);
  app.SetObserver(Observer());
  app.AddOpenHook(WizardOpenHook());
  app.AddCloseHook(WizardCloseHook());
  app.AddCloseHook(workbook::FormulaMemoryCloseHook());
}

}  // namespace quillmere
