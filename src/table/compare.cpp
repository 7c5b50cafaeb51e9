#include "table/compare.h"

#include <cstdint>

namespace quillmere {
namespace {

/// -1, 0 or +1; a NaN is equal to every number.
template <class Value>
int Order(Value a, Value b) {
  return a < b ? -1 : a > b;
}

/// The first of several orders, most important first, that decides.
template <class... Orders>
int FirstOrder(Orders... orders) {
  int result = 0;
  ((result = result != 0 ? result : orders), ...);
  return result;
}

int CompareTexts(XStringView a, XStringView b) {
  if (a.size() != b.size()) return Order(a.size(), b.size());
  const int order = CompareExact(a, b);
  if (order == 0) return 0;
  for (std::size_t at = 0; a[at] == b[at]; ++at)
    if (a[at] == 0) return 0;
  return order;
}

int CompareAreas(const XLREF12& a, const XLREF12& b) {
  return FirstOrder(Order(a.colFirst, b.colFirst), Order(a.colLast, b.colLast), Order(a.rwFirst, b.rwFirst),
                    Order(a.rwLast, b.rwLast));
}

int CompareReferences(const XLOPER12& a, const XLOPER12& b) {
  const auto countOf = [](const XLMREF12* areas) { return areas == nullptr ? 0 : areas->count; };
  const XLMREF12* const areasA = a.val.mref.lpmref;
  const XLMREF12* const areasB = b.val.mref.lpmref;
  int order = FirstOrder(Order(a.val.mref.idSheet, b.val.mref.idSheet), Order(countOf(areasA), countOf(areasB)));
  for (int at = 0; order == 0 && at < countOf(areasA); ++at)
    order = CompareAreas(areasA->reftbl[at], areasB->reftbl[at]);
  return order;
}

/// Compares two values of one of the kinds that a single cell can have.
int CompareCells(std::uint32_t type, const XLOPER12& a, const XLOPER12& b) {
  switch (type) {
    case xltypeNum:
      return Order(a.val.num, b.val.num);
    case xltypeStr:
      return CompareTexts(TextOf(a), TextOf(b));
    case xltypeBool:
      return Order(a.val.xbool, b.val.xbool);
    case xltypeErr:
      return Order(a.val.err, b.val.err);
    case xltypeInt:
      return Order(a.val.w, b.val.w);
    default:
      return 0;
  }
}

int CompareArrays(const XLOPER12& a, const XLOPER12& b) {
  int order = FirstOrder(Order(a.val.array.rows, b.val.array.rows), Order(a.val.array.columns, b.val.array.columns));
  const std::int64_t count = std::int64_t{a.val.array.rows} * a.val.array.columns;
  for (std::int64_t at = 0; order == 0 && at < count; ++at) {
    const XLOPER12& cellA = a.val.array.lparray[at];
    const XLOPER12& cellB = b.val.array.lparray[at];
    const std::uint32_t type = CellType(cellA);
    order = Order(type, CellType(cellB));
    if (order == 0) order = CompareCells(type, cellA, cellB);
  }
  return order;
}

int CompareBigData(const XLOPER12& a, const XLOPER12& b) {
  const auto handleOf = [](const XLOPER12& value) {
    return reinterpret_cast<std::uintptr_t>(value.val.bigdata.h.hdata);
  };
  return FirstOrder(Order(a.val.bigdata.cbData, b.val.bigdata.cbData), Order(handleOf(a), handleOf(b)));
}

}  // namespace

int CompareOpers(const XLOPER12* a, const XLOPER12* b) {
  if (a == b) return 0;
  if (a == nullptr) return -1;
  if (b == nullptr) return 1;
  const std::uint32_t type = TypeOf(*a);
  if (type != TypeOf(*b)) return Order(type, TypeOf(*b));
  switch (type) {
    case xltypeMulti:
      return CompareArrays(*a, *b);
    case xltypeRef:
      return CompareReferences(*a, *b);
    case xltypeSRef:
      return CompareAreas(a->val.sref.ref, b->val.sref.ref);
    case xltypeBigData:
      return CompareBigData(*a, *b);
    default:
      return CompareCells(type, *a, *b);
  }
}

PreparedLookupValue PrepareLookupValue(const XLOPER12& value, bool caseSensitive, XCHAR* folded) {
  PreparedLookupValue lookup{.value = value, .text = {}, .isText = IsTextCell(value), .caseSensitive = caseSensitive};
  if (!lookup.isText) return lookup;
  lookup.text = TextOf(value);
  if (!caseSensitive) {
    FoldTo(folded, lookup.text);
    lookup.text = {folded, lookup.text.size()};
  }
  return lookup;
}

int CompareLookupCell(const XLOPER12& cell, const PreparedLookupValue& lookup) {
  if (CellType(cell) != xltypeStr) return lookup.isText ? -1 : CompareOpers(&cell, &lookup.value);
  if (!lookup.isText) return 1;
  const XStringView text = TextOf(cell);
  return lookup.caseSensitive ? CompareExact(text, lookup.text) : CompareFolded(text, lookup.text);
}

}  // namespace quillmere
