#include "host/dialogs/dialog_page.h"

#include <algorithm>

namespace qcalc {

DialogPage::DialogPage(const RegisteredFunction& function) : name_(function.name), help_(function.help) {
  XStringView names = function.argumentNames;
  while (!names.empty()) {
    const std::size_t end = std::min(names.find(XTEXT(',')), names.size());
    const std::size_t at = arguments_.size();
    arguments_.push_back(
        {XString(names.substr(0, end)), at < function.argumentHelp.size() ? function.argumentHelp[at] : XString(), {}});
    names.remove_prefix(std::min(end + 1, names.size()));
  }
}

void DialogPage::ScrollTo(std::size_t first) { first_ = std::min(first, Count() - Boxes()); }

XString DialogPage::Formula() const {
  std::size_t count = Count();
  while (count > 0 && arguments_[count - 1].text.empty()) --count;
  XString formula = XTEXT("=") + name_ + XTEXT("(");
  for (std::size_t i = 0; i < count; ++i) {
    if (i > 0) formula += XTEXT(",");
    formula += arguments_[i].text;
  }
  return formula + XTEXT(")");
}

}  // namespace qcalc
