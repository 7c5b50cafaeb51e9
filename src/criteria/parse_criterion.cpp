#include "criteria/parse_criterion.h"

#include "frame/text/fold_case.h"

namespace quillmere::criteria {
namespace {

constexpr XCHAR kNegation = 0xAC;  // "¬"
constexpr XCHAR kJoin = XTEXT('&');

struct Token {
  XStringView text;
  CriterionKind kind;
};

/// Longer operators before those that they begin with.
constexpr Token kOperators[] = {
    {XTEXT("<="), CriterionKind::kLessEqual}, {XTEXT("<>"), CriterionKind::kNotEqual},
    {XTEXT("<"), CriterionKind::kLess},       {XTEXT(">="), CriterionKind::kGreaterEqual},
    {XTEXT(">"), CriterionKind::kGreater},    {XTEXT("="), CriterionKind::kEqual},
    {XTEXT("~~"), CriterionKind::kRegex},     {XTEXT("~"), CriterionKind::kLike},
};

constexpr Token kKeywords[] = {
    {XTEXT("#TXT"), CriterionKind::kIsText},       {XTEXT("#N"), CriterionKind::kIsNumber},
    {XTEXT("#BOOL"), CriterionKind::kIsBool},      {XTEXT("#EMPTY"), CriterionKind::kIsEmpty},
    {XTEXT("#TYPE"), CriterionKind::kIsType},      {XTEXT("#BLANK"), CriterionKind::kIsBlank},
    {XTEXT("#ZLS"), CriterionKind::kIsZeroLength}, {XTEXT("TRUE"), CriterionKind::kIsTrue},
    {XTEXT("FALSE"), CriterionKind::kIsFalse},     {XTEXT("#ERR"), CriterionKind::kIsError},
};

bool Drop(XStringView& text, XStringView front) {
  if (!text.starts_with(front)) return false;
  text.remove_prefix(front.size());
  return true;
}

void SetText(Criterion& criterion, XStringView text) {
  criterion.valueType = cell_type::kText;
  criterion.text = text;
}

void SetBoolean(Criterion& criterion, bool value) {
  criterion.kind = value ? CriterionKind::kIsTrue : CriterionKind::kIsFalse;
  criterion.valueType = cell_type::kBoolean;
  criterion.code = value ? 1 : 0;
}

void SetKeyword(Criterion& criterion, CriterionKind kind) {
  if (!IsTypeTest(kind)) return SetBoolean(criterion, kind == CriterionKind::kIsTrue);
  criterion.kind = kind;
}

Criterion ParseText(XStringView text) {
  Criterion criterion;
  SetText(criterion, text);
  if (text.empty()) {
    criterion.kind = CriterionKind::kEqual;
    return criterion;
  }
  criterion.negated = Drop(text, {&kNegation, 1});
  criterion.joined = Drop(text, {&kJoin, 1});
  for (const Token& token : kOperators) {
    if (!Drop(text, token.text)) continue;
    criterion.kind = token.kind;
    SetText(criterion, text);
    return criterion;
  }
  SetText(criterion, text);
  for (const Token& token : kKeywords)
    if (EqualFolded(text, token.text)) SetKeyword(criterion, token.kind);
  return criterion;
}

}  // namespace

Criterion ParseCriterion(const XLOPER12& crit) {
  Criterion criterion;
  switch (criterion.valueType = CellTypeOf(crit)) {
    case cell_type::kText:
      return ParseText(TextOf(crit));
    case cell_type::kBoolean:
      SetBoolean(criterion, crit.val.xbool != 0);
      break;
    case cell_type::kNumber:
      criterion.number = CellNumber(crit);
      break;
    case cell_type::kError:
      criterion.code = crit.val.err;
      break;
    default:
      break;
  }
  return criterion;
}

}  // namespace quillmere::criteria
