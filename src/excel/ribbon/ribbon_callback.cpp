// The command that the ribbon server runs for each event of the ribbon.
//
// Serves RibbonCallback.
#include "frame/app/xll_app.h"
#include "implementations/excel.h"

namespace quillmere::excel {

void Functions::RibbonCallback(CXlOper& result, const CXlScalarArgument<ElementKind::kInteger>& callback,
                               const CXlScalarArgument<ElementKind::kString>& id,
                               const CXlScalarArgument<ElementKind::kString>& tag,
                               const CXlScalarArgument<ElementKind::kInteger>& index,
                               const CXlScalarArgument<ElementKind::kString>& text,
                               const CXlScalarArgument<ElementKind::kString>& selectedId,
                               const CXlScalarArgument<ElementKind::kBoolean>& pressed) {
  result = CXllApp::Instance()->OnRibbonCallback(callback.Read(), id.Read(), tag.Read(), index.Read(), text.Read(),
                                                 selectedId.Read(), pressed.Read());
}

}  // namespace quillmere::excel
