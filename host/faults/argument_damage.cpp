#include "host/faults/argument_damage.h"

#include <algorithm>
#include <cstring>
#include <span>

#include "host/api/oper_types.h"

namespace qcalc {
namespace {

template <typename Width>
class Damage {
 public:
  using Oper = typename Width::Oper;
  using Unit = typename Width::Unit;

  Damage(const ArgumentFault& fault, std::vector<SpoiltMemory>& memory) : fault_(fault), memory_(memory) {}

  /// Spoils `oper`, a copy. What is wrong with that; empty when all went well.
  std::string DoTo(Oper& oper) {
    switch (fault_.kind) {
      case ArgumentFaultKind::kType:
        SetType(oper, static_cast<std::uint32_t>(fault_.number));
        return {};
      case ArgumentFaultKind::kBits:
        SetType(oper, oper.xltype | static_cast<std::uint32_t>(fault_.number));
        return {};
      case ArgumentFaultKind::kLength:
        return LieAboutLength(oper);
      case ArgumentFaultKind::kDims:
        return LieAboutSize(oper);
      case ArgumentFaultKind::kPointer:
        SetType(oper, xltypeStr);
        oper.val.str = static_cast<Unit*>(memory_.emplace_back(sizeof(Unit)).Unreadable());
        return {};
      case ArgumentFaultKind::kNested:
        Nest(oper);
        return {};
      case ArgumentFaultKind::kNull:
        break;
    }
    return "there is nothing to do to the value";
  }

 private:
  static std::span<const Oper> Elements(const Oper& array) {
    return {array.val.array.lparray,
            static_cast<std::size_t>(array.val.array.rows) * static_cast<std::size_t>(array.val.array.columns)};
  }

  /// Gives the array elements of its own, a copy of those it has; texts that hang on them are shared.
  Oper* CopyElements(Oper& array) {
    const std::span<const Oper> elements = Elements(array);
    auto* copy = reinterpret_cast<Oper*>(memory_.emplace_back(elements.size_bytes()).data());
    std::memcpy(static_cast<void*>(copy), elements.data(), elements.size_bytes());
    array.val.array.lparray = copy;
    return copy;
  }

  void Lengthen(Oper& text) {
    const std::size_t bytes = (LengthOf(text.val.str) + 1) * sizeof(Unit);
    auto* copy = reinterpret_cast<Unit*>(memory_.emplace_back(bytes).data());
    std::memcpy(copy, text.val.str, bytes);
    copy[0] = static_cast<Unit>(fault_.number);
    text.val.str = copy;
  }

  std::string LieAboutLength(Oper& oper) {
    if (TypeOf(oper) == xltypeStr) {
      Lengthen(oper);
      return {};
    }
    if (TypeOf(oper) != xltypeMulti) return "it is no text";
    const std::span<const Oper> elements = Elements(oper);
    const auto text = std::find_if(elements.begin(), elements.end(),
                                   [](const Oper& element) { return TypeOf(element) == xltypeStr; });
    if (text == elements.end()) return "it holds no text";
    const std::ptrdiff_t index = text - elements.begin();
    Lengthen(CopyElements(oper)[index]);
    return {};
  }

  std::string LieAboutSize(Oper& oper) {
    if (TypeOf(oper) != xltypeMulti) return "it is no array";
    CopyElements(oper);
    oper.val.array.rows = static_cast<decltype(oper.val.array.rows)>(fault_.rows);
    oper.val.array.columns = static_cast<decltype(oper.val.array.columns)>(fault_.columns);
    return {};
  }

  void Nest(Oper& oper) {
    if (TypeOf(oper) != xltypeMulti) MakeArray(oper);
    MakeArray(*CopyElements(oper));
  }

  /// Makes a value the only element of an array that takes its place.
  void MakeArray(Oper& oper) {
    auto* element = reinterpret_cast<Oper*>(memory_.emplace_back(sizeof(Oper)).data());
    std::memcpy(static_cast<void*>(element), &oper, sizeof(Oper));
    oper.val.array.lparray = element;
    oper.val.array.rows = 1;
    oper.val.array.columns = 1;
    SetType(oper, xltypeMulti);
  }

  const ArgumentFault& fault_;
  std::vector<SpoiltMemory>& memory_;
};

}  // namespace

template <typename Width>
typename Width::Oper* SpoiltCopy(const typename Width::Oper& oper, const ArgumentFault& fault,
                                 std::vector<SpoiltMemory>& memory, std::string& reason) {
  using Oper = typename Width::Oper;
  auto* copy = reinterpret_cast<Oper*>(memory.emplace_back(sizeof(Oper)).data());
  std::memcpy(static_cast<void*>(copy), &oper, sizeof(Oper));
  reason = Damage<Width>(fault, memory).DoTo(*copy);
  return reason.empty() ? copy : nullptr;
}

template <typename Width>
bool IsReadable(const typename Width::Oper& oper) {
  using Unit = typename Width::Unit;
  switch (TypeOf(oper)) {
    case xltypeStr: {
      if (!CanRead(oper.val.str, sizeof(Unit))) return false;
      return CanRead(oper.val.str, (LengthOf(oper.val.str) + 1) * sizeof(Unit));
    }
    case xltypeMulti: {
      const auto& array = oper.val.array;
      const std::size_t count = static_cast<std::size_t>(array.rows) * static_cast<std::size_t>(array.columns);
      if (!CanRead(array.lparray, count * sizeof(oper))) return false;
      return std::all_of(array.lparray, array.lparray + count, [](const auto& element) {
        return TypeOf(element) != xltypeStr || IsReadable<Width>(element);
      });
    }
    case xltypeRef: {
      const auto* const areas = oper.val.mref.lpmref;
      return !areas || (CanRead(areas, sizeof areas->count) &&
                        CanRead(areas, sizeof *areas + areas->count * sizeof areas->reftbl[0]));
    }
    default:
      return true;
  }
}

template bool IsReadable<Wide>(const XLOPER12&);
template bool IsReadable<Narrow>(const XLOPER&);
template XLOPER12* SpoiltCopy<Wide>(const XLOPER12&, const ArgumentFault&, std::vector<SpoiltMemory>&, std::string&);
template XLOPER* SpoiltCopy<Narrow>(const XLOPER&, const ArgumentFault&, std::vector<SpoiltMemory>&, std::string&);

}  // namespace qcalc
