// What other parts of the add-in have done when it opens and closes.
#pragma once

#include "frame/callbacks/excel_settings.h"
#include "xlcall/xchar.h"

namespace quillmere {

/// What an open hook is told.
struct CXllOpenContext {
  XStringView modulePath;  ///< the add-in's full path
  XStringView name;        ///< the add-in's display name
  const ExcelSettings& excel;
};

/// Called once when the add-in opens, before anything is registered. An exception ends the opening.
class IXllOpenHook {
 public:
  virtual ~IXllOpenHook() = default;
  virtual void OnOpen(const CXllOpenContext& context) = 0;
};

/// Called once when the add-in closes, and when an opening fails, however far it came: it undoes what there is to undo.
/// Functions may still be called afterwards: Excel closes add-ins before the user can cancel at its save prompt.
class IXllCloseHook {
 public:
  virtual ~IXllCloseHook() = default;
  virtual void OnClose() = 0;
};

}  // namespace quillmere
