// Any text as a criterion: what is read of it, written down again in its one form, is that text.
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "criteria/parse_criterion.h"
#include "frame/text/fold_case.h"

using namespace quillmere;
using criteria::Criterion;
using criteria::CriterionKind;

namespace {

constexpr XStringView kAlphabet = XTEXT("\u00AC&<>=~#NnTxtRUEFALSrue1");

XStringView OperatorOf(CriterionKind kind) {
  constexpr XStringView kOperators[] = {XTEXT("<="), XTEXT(">="), XTEXT("<"), XTEXT(">"), XTEXT("="), XTEXT(""),
                                        XTEXT(""),   XTEXT("<>"), XTEXT(""),  XTEXT("~"), XTEXT(""),  XTEXT("~~")};
  const auto place = static_cast<std::size_t>(kind) - 1;
  return place < std::size(kOperators) ? kOperators[place] : XStringView();
}

XStringView WordOf(CriterionKind kind) {
  switch (kind) {
    case CriterionKind::kIsTrue:
      return XTEXT("true");
    case CriterionKind::kIsFalse:
      return XTEXT("false");
    case CriterionKind::kIsError:
      return XTEXT("#err");
    case CriterionKind::kIsText:
      return XTEXT("#txt");
    case CriterionKind::kIsNumber:
      return XTEXT("#n");
    default:
      return XTEXT("another");
  }
}

/// The criterion as a text; folded where it is a word.
XString Written(const Criterion& criterion) {
  XString text;
  if (criterion.negated) text += kAlphabet[0];
  if (criterion.joined) text += XTEXT('&');
  const bool isWord = IsTypeTest(criterion.kind) || criterion.valueType == cell_type::kBoolean;
  return text + XString(isWord ? WordOf(criterion.kind) : OperatorOf(criterion.kind)) +
         (isWord ? XString() : XString(criterion.text));
}

/// Whether what counts as the value begins with what would have made another operator.
bool LeavesOperator(const Criterion& criterion) {
  switch (criterion.kind) {
    case CriterionKind::kLess:
      return criterion.text.starts_with(XTEXT('=')) || criterion.text.starts_with(XTEXT('>'));
    case CriterionKind::kGreater:
      return criterion.text.starts_with(XTEXT('='));
    case CriterionKind::kLike:
      return criterion.text.starts_with(XTEXT('~'));
    case CriterionKind::kPlain:
      return !criterion.text.empty() && XStringView(XTEXT("<>=~")).find(criterion.text[0]) != XStringView::npos;
    default:
      return false;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::vector<XCHAR> counted(1);
  for (std::size_t at = 0; at < size && at < 64; ++at)
    counted.push_back(data[at] < 200 ? kAlphabet[data[at] % kAlphabet.size()] : data[at]);
  counted[0] = static_cast<XCHAR>(counted.size() - 1);
  XLOPER12 cell = BooleanCell(true);
  cell.val.str = counted.data();
  cell.xltype = xltypeStr;
  const Criterion criterion = criteria::ParseCriterion(cell);
  const XStringView text(counted.data() + 1, counted.size() - 1);
  if (LeavesOperator(criterion)) std::abort();
  if (text.empty() ? criterion.kind != CriterionKind::kEqual : !EqualFolded(Written(criterion), text)) std::abort();
  return 0;
}
