// The add-in's own application object.
#pragma once

#include "frame/app/xll_app.h"

namespace quillmere {

/// Quillmere4: names, help file and category of the add-in.
class CQuillmere4App : public CXllApp {
 public:
  /// Wires the frame to the other rooms.
  CQuillmere4App() noexcept;

  /// Sets the help file, "Quillmere4.chm" beside the add-in, and opens.
  bool Open() override;
  /// Builds the function table and sets the category of all functions to the add-in's title.
  bool RegisterFunctions() override;
  XString GetAddinLongName() const override;
  XString GetModuleName() const override;
  XString GetTitle() const override;
};

}  // namespace quillmere
