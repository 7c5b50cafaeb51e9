#include "addin/quillmere4_app.h"

#include "addin/wiring.h"

namespace quillmere {

CQuillmere4App::CQuillmere4App() noexcept { WireTheFrame(*this); }

bool CQuillmere4App::Open() {
  SetHelpFilePath(XString(ModuleDirectory()) + XTEXT("\\Quillmere4.chm"));
  return CXllApp::Open();
}

bool CQuillmere4App::RegisterFunctions() {
  if (!CXllApp::RegisterFunctions()) return false;
  SetCategoryOfAll(GetTitle());
  return true;
}

XString CQuillmere4App::GetAddinLongName() const { return XTEXT("Quillmere V4 array functions"); }

XString CQuillmere4App::GetModuleName() const { return XTEXT("Quillmere4"); }

XString CQuillmere4App::GetTitle() const { return XTEXT("Quillmere_V4_Tarnwick_Functions"); }

}  // namespace quillmere
