#include "excel/wizard/list_provider.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "frame/text/integer_text.h"
#include "frame/text/white_space.h"

namespace quillmere {

std::optional<std::size_t> CXlWizExUIListProvider::EntryOf(XStringView boxText) const noexcept {
  const XStringView written = TrimWhiteSpace(boxText);
  const XStringView code = written.empty() ? XStringView(defaultCode_) : written;
  const auto found = std::ranges::find(entries_, code, &WizardListEntry::code);
  if (found == entries_.end()) return std::nullopt;
  return static_cast<std::size_t>(std::distance(entries_.begin(), found));
}

CXlWizExUIListProvider CXlWizExUIArgumentListCreator::Create(std::span<const ArgumentChoice> choices,
                                                             XString defaultText) {
  std::vector<WizardListEntry> entries;
  entries.reserve(choices.size());
  for (const ArgumentChoice& choice : choices)
    entries.push_back({.code = XString(IntegerText(choice.code).View()), .text = XString(choice.text)});
  return {std::move(entries), std::move(defaultText)};
}

XString ShownEntry(const WizardListEntry& entry) { return entry.code + XTEXT("  ") + entry.text; }

}  // namespace quillmere
