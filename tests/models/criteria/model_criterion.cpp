#include "tests/models/criteria/model_criterion.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <regex>
#include <string>

#include "host/values/conversion.h"
#include "host/values/number_reading.h"
#include "tests/models/lookup/model_matching.h"

namespace qcalc::criteria {
namespace {

constexpr XStringView kWords[] = {XTEXT("#TXT"),   XTEXT("#N"),   XTEXT("#BOOL"), XTEXT("#EMPTY"), XTEXT("#TYPE"),
                                  XTEXT("#BLANK"), XTEXT("#ZLS"), XTEXT("TRUE"),  XTEXT("FALSE"),  XTEXT("#ERR")};
// The longer ones first.
constexpr XStringView kOperators[] = {XTEXT("<="), XTEXT("<>"), XTEXT("<"),  XTEXT(">="),
                                      XTEXT(">"),  XTEXT("="),  XTEXT("~~"), XTEXT("~")};

bool IsOneOf(XStringView text, std::initializer_list<XStringView> list) {
  return std::find(list.begin(), list.end(), text) != list.end();
}

bool IsPattern(const Criterion& criterion) { return IsOneOf(criterion.op, {XTEXT("~"), XTEXT("~~")}); }

/// The operator or word, and the value; what "¬" and "&" leave is not empty.
void ReadText(XStringView text, Criterion& criterion) {
  for (const XStringView op : kOperators)
    if (text.starts_with(op)) {
      criterion.op = op;
      criterion.value = CellView::Text(text.substr(op.size()));
      return;
    }
  criterion.value = CellView::Text(text);
  for (const XStringView word : kWords)
    if (lookup::EqualLabels(text, word)) criterion.op = word;
  if (criterion.op == XTEXT("TRUE") || criterion.op == XTEXT("FALSE"))
    criterion.value = CellView::Boolean(criterion.op == XTEXT("TRUE"));
}

Criterion ReadCriterion(const CellView& written) {
  Criterion criterion;
  criterion.value = written;
  if (written.IsBoolean()) criterion.op = written.AsBoolean() ? XTEXT("TRUE") : XTEXT("FALSE");
  if (!written.IsText()) return criterion;
  XStringView text = written.AsText();
  if (text.empty()) criterion.op = XTEXT("=");
  criterion.isNegated = text.starts_with(XTEXT("¬"));
  if (criterion.isNegated) text.remove_prefix(1);
  criterion.isJoined = text.starts_with(XTEXT("&"));
  if (criterion.isJoined) text.remove_prefix(1);
  criterion.value = CellView::Text(text);
  if (!text.empty()) ReadText(text, criterion);
  return criterion;
}

/// The kinds of cells that are held against the value.
void Prepare(Criterion& criterion) {
  criterion.kinds = {criterion.value.Kind()};
  if (!criterion.value.IsText() || criterion.isJoined) return;
  const XStringView text = criterion.value.AsText();
  if (text.empty()) criterion.kinds.push_back(CellKind::kEmpty);
  if (IsPattern(criterion) || criterion.op.starts_with(XTEXT("#"))) return;
  const Value number = TextToNumber(text, {});
  if (!number.IsNumber()) return;
  criterion.kinds.push_back(CellKind::kNumber);
  criterion.number = number.AsNumber();
}

int TypeCode(CellKind kind) {
  switch (kind) {
    case CellKind::kNumber:
      return 1;
    case CellKind::kText:
      return 2;
    case CellKind::kBoolean:
      return 4;
    case CellKind::kError:
      return 16;
    case CellKind::kEmpty:
      return 256;
  }
  return 0;
}

template <typename Number>
int Side(Number a, Number b) {
  return (a > b) - (a < b);
}

bool EqualNumbers(double x, double y) {
  constexpr double kLeast = std::numeric_limits<double>::min();
  const double a = std::max(std::abs(x), kLeast), b = std::max(std::abs(y), kLeast);
  const double apart = std::max(std::abs(a - b) / a, std::abs(a - b) / b);
  return apart * 0x1p52 < 5 && ((x < 0) == (y < 0) || x == 0 || y == 0);
}

int CompareTexts(XStringView a, XStringView b) {
  for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i)
    if (const int side = Side<int>(lookup::FoldLatin(a[i]), lookup::FoldLatin(b[i]))) return side;
  return Side(a.size(), b.size());
}

/// Of the same kind.
int CompareValues(const CellView& a, const CellView& b) {
  if (a.IsNumber()) return EqualNumbers(a.AsNumber(), b.AsNumber()) ? 0 : Side(a.AsNumber(), b.AsNumber());
  if (a.IsText()) return CompareTexts(a.AsText(), b.AsText());
  if (a.IsBoolean()) return Side<int>(a.AsBoolean(), b.AsBoolean());
  return a.IsError() ? Side(a.AsError(), b.AsError()) : 0;
}

bool IsWhiteSpace(XCHAR unit) {
  return (unit >= 9 && unit <= 13) || (unit >= 0x2000 && unit <= 0x200A) ||
         IsOneOf(XStringView(&unit, 1), {XTEXT(" "), XTEXT("\u0085"), XTEXT("\u00A0"), XTEXT("\u1680"), XTEXT("\u2028"),
                                         XTEXT("\u2029"), XTEXT("\u202F"), XTEXT("\u205F"), XTEXT("\u3000")});
}

bool IsOfType(const CellView& cell, const XString& word, const CellView& first) {
  const XStringView text = cell.IsText() ? cell.AsText() : XStringView();
  if (word == XTEXT("#ERR")) return cell.IsError();
  if (word == XTEXT("#TXT")) return cell.IsText();
  if (word == XTEXT("#N")) return cell.IsNumber();
  if (word == XTEXT("#BOOL")) return cell.IsBoolean();
  if (word == XTEXT("#EMPTY")) return cell.IsEmpty();
  if (word == XTEXT("#TYPE")) return cell.Kind() == first.Kind();
  if (word == XTEXT("#ZLS")) return cell.IsText() && text.empty();
  return !text.empty() && std::all_of(text.begin(), text.end(), IsWhiteSpace);
}

/// Units beyond ASCII become one that no drawn expression names.
std::string Narrow(XStringView text) {
  std::string narrow;
  for (const XCHAR unit : text) narrow += unit < 0x7F ? static_cast<char>(unit) : '\x7F';
  return narrow;
}

/// Nothing is told of an expression that is none but that it matches nothing.
bool FitsPattern(const CellView& cell, const Criterion& criterion, bool& isValid) {
  const XStringView pattern = criterion.value.AsText();
  const bool isExpression = criterion.op == XTEXT("~~");
  try {
    if (isExpression) std::regex(Narrow(pattern));
  } catch (const std::regex_error&) {
    isValid = false;
    return false;
  }
  if (pattern.empty()) return cell.IsEmpty() || (cell.IsText() && cell.AsText().empty());
  if (!cell.IsNumber() && !cell.IsText()) return false;
  const Value text = ToText(cell, {});
  if (!isExpression) return lookup::FitsPattern(text.AsCell(), criterion.value, false);
  return std::regex_search(Narrow(text.AsText()), std::regex(Narrow(pattern), std::regex::icase));
}

bool MeetsOne(const CellView& cell, const Criterion& criterion, const CellView& first) {
  const XString& op = criterion.op;
  bool isValid = true;
  bool isMet = false;
  if (op.starts_with(XTEXT("#")))
    isMet = IsOfType(cell, op, first);
  else if (IsPattern(criterion))
    isMet = FitsPattern(cell, criterion, isValid);
  else {
    const int side = Compare(cell, criterion);
    if (side < 0) isMet = IsOneOf(op, {XTEXT("<"), XTEXT("<="), XTEXT("<>")});
    if (side > 0) isMet = IsOneOf(op, {XTEXT(">"), XTEXT(">="), XTEXT("<>")});
    if (side == 0) isMet = !IsOneOf(op, {XTEXT("<"), XTEXT(">"), XTEXT("<>")});
  }
  return isValid && isMet != criterion.isNegated;
}

}  // namespace

Criteria ReadCriteria(const Value& written) {
  Criteria criteria;
  if (!written.IsArray()) criteria.push_back(ReadCriterion(written.AsCell()));
  if (written.IsArray())
    for (const CellView& element : written.AsArray()->Cells()) criteria.push_back(ReadCriterion(element));
  for (Criterion& criterion : criteria) Prepare(criterion);
  return criteria;
}

int Compare(const CellView& cell, const Criterion& criterion) {
  for (const CellKind kind : criterion.kinds)
    if (kind == cell.Kind()) {
      const bool isReadNumber = cell.IsNumber() && criterion.value.IsText();
      return CompareValues(cell, isReadNumber ? CellView::Number(criterion.number) : criterion.value);
    }
  if (cell.IsEmpty()) return 1;
  if (criterion.value.IsEmpty()) return -1;
  int all = 0, least = TypeCode(CellKind::kEmpty);
  for (const CellKind kind : criterion.kinds) {
    all += TypeCode(kind);
    least = std::min(least, TypeCode(kind));
  }
  return Side(TypeCode(cell.Kind()), criterion.op.empty() || criterion.isJoined ? all : least);
}

bool Meets(const CellView& cell, const Criteria& criteria, const CellView& first) {
  const bool isReversed = criteria.size() > 1 && std::all_of(criteria.begin(), criteria.end(),
                                                             [](const Criterion& one) { return one.isNegated; });
  for (Criterion criterion : criteria) {
    if (isReversed) criterion.isNegated = false;
    if (MeetsOne(cell, criterion, first)) return !isReversed;
  }
  return isReversed;
}

bool HasOrder(const Criteria& criteria) {
  const Criterion& only = criteria[0];
  return criteria.size() == 1 && !only.isNegated && !IsPattern(only) && !only.op.starts_with(XTEXT("#")) &&
         only.op != XTEXT("<>");
}

int CompareCells(const CellView& a, const CellView& b) {
  if (a.Kind() != b.Kind()) return Side(TypeCode(a.Kind()), TypeCode(b.Kind()));
  return a.IsNumber() ? Side(a.AsNumber(), b.AsNumber()) : CompareValues(a, b);
}

bool EqualCells(const CellView& a, const CellView& b) { return a.Kind() == b.Kind() && CompareValues(a, b) == 0; }

}  // namespace qcalc::criteria
