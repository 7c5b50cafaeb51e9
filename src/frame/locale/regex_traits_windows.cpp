#include "frame/locale/regex_traits_windows.h"

#include <algorithm>
#include <numeric>

#include "frame/entry/process_end.h"

namespace quillmere {

UnitTables unitTables;

namespace {

using LanguageTraits = boost::BOOST_REGEX_DETAIL_NS::w32_regex_traits_implementation<wchar_t>;

SRWLOCK lock = SRWLOCK_INIT;
CUntilUnloaded<std::shared_ptr<const LanguageTraits>> latest;  // of the language that was asked for last

class LockHeld {
 public:
  LockHeld() noexcept { AcquireSRWLockExclusive(&lock); }
  LockHeld(const LockHeld&) = delete;
  LockHeld& operator=(const LockHeld&) = delete;
  ~LockHeld() { ReleaseSRWLockExclusive(&lock); }
};

/// Neither depends on the language: letters change case in the linguistic way only where that is asked for.
void FillUnitTables(LCID language) {
  constexpr int kUnits = UnitTables::kUnits;
  const auto units = std::make_unique<wchar_t[]>(kUnits);
  std::iota(units.get(), units.get() + kUnits, L'\0');
  if (LCMapStringW(language, LCMAP_LOWERCASE, units.get(), kUnits, unitTables.lowerCase, kUnits) != kUnits ||
      !GetStringTypeExW(language, CT_CTYPE1, units.get(), kUnits, unitTables.types))
    throw std::runtime_error("Windows cannot tell the classes of characters");
}

}  // namespace
}  // namespace quillmere

namespace boost::BOOST_REGEX_DETAIL_NS {

template <>
std::shared_ptr<const w32_regex_traits_implementation<wchar_t>> create_w32_regex_traits<wchar_t>(lcid_type language) {
  const quillmere::LockHeld held;
  auto& latest = *quillmere::latest;
  if (!latest) quillmere::FillUnitTables(language);
  if (!latest || latest->m_locale != language) latest = std::make_shared<const quillmere::LanguageTraits>(language);
  return latest;
}

}  // namespace boost::BOOST_REGEX_DETAIL_NS
