#include "text/regex/linear/unit_classes.h"

#include <algorithm>

namespace quillmere::text {

UnitClasses::UnitClasses(const LibraryRegex& expression)
    : expression_(expression), anyCase_((expression.flags() & boost::regex_constants::icase) != 0) {
  rows_ = {0, kTextBegin, kTextEnd};
}

UnitRow UnitClasses::Literal(XCHAR unit) {
  const XCHAR translated = expression_.get_traits().translate(unit, anyCase_);
  return BitOf({&translated, 1}, true);
}

UnitRow UnitClasses::Compiled(XStringView atom) { return BitOf(atom, false); }

UnitRow UnitClasses::BitOf(XStringView spelling, bool isLiteral) {
  constexpr std::size_t kMostAtoms = 64 - kFirstAtom;
  const auto isSame = [&](const Atom& atom) { return atom.isLiteral == isLiteral && atom.spelling == spelling; };
  const auto found = std::ranges::find_if(atoms_, isSame);
  const std::size_t place = found - atoms_.begin();
  if (place == kMostAtoms) return 0;
  if (found == atoms_.end()) atoms_.push_back({XString(spelling), isLiteral, LibraryRegex()});
  return UnitRow{1} << (kFirstAtom + place);
}

ClassNumber UnitClasses::Of(XCHAR unit) {
  if (const ClassNumber known = Known(unit); known != kUnknownClass) return known;
  const UnitRow row = FindRow(unit);
  Page* page = &first_;
  if (unit >= kPageUnits) {
    if (pages_.empty()) pages_.resize(0x10000 / kPageUnits);
    auto& made = pages_[unit / kPageUnits];
    if (!made) made = std::make_unique<Page>();
    page = made.get();
  }
  const auto place = std::find(rows_.begin() + 1, rows_.end(), row) - rows_.begin();
  if (place == std::ssize(rows_)) rows_.push_back(row);
  return (*page)[unit % kPageUnits] = static_cast<ClassNumber>(place);
}

UnitRow UnitClasses::FindRow(XCHAR unit) {
  const auto& traits = expression_.get_traits();
  UnitRow row = kAnyUnitRow;
  if (traits.isctype(unit, expression_.get_data().m_word_mask)) row |= kWordUnit;
  if (boost::BOOST_REGEX_DETAIL_NS::is_separator(unit)) row |= kLineSeparator;
  if (unit == XTEXT('\r')) row |= kReturn;
  if (unit == XTEXT('\n')) row |= kFeed;
  row &= asked_ | kAnyUnitRow;
  const XCHAR translated = traits.translate(unit, anyCase_);
  UnitRow bit = UnitRow{1} << kFirstAtom;
  for (Atom& atom : atoms_) {
    if (!atom.isLiteral && atom.compiled.empty())
      CompileByLibrary([&] { atom.compiled.assign(atom.spelling, expression_.flags()); });
    if (atom.isLiteral ? atom.spelling.front() == translated : boost::regex_match(&unit, &unit + 1, atom.compiled))
      row |= bit;
    bit <<= 1;
  }
  return row;
}

}  // namespace quillmere::text
