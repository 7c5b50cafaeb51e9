// One callback on its way: what a handler is asked and what it answers.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/addin/call_context.h"
#include "host/addin/host_state.h"
#include "host/api/api_value.h"
#include "xlcall/callback_list.h"

namespace qcalc {

/// A code, and the value that goes with xlretSuccess.
struct CallbackAnswer {
  CallbackAnswer(ApiValue itsValue) : value(std::move(itsValue)) {}
  CallbackAnswer(Value itsValue) : value(std::move(itsValue)) {}
  static CallbackAnswer Failure(int code) {
    CallbackAnswer answer(Value::Error(xlerrValue));
    answer.code = code;
    return answer;
  }

  int code = xlretSuccess;
  ApiValue value;
};

struct CallbackRequest {
  CallContext& context;
  const XlCallback& callback;
  bool isInternational = false;  ///< made with xlIntl
  std::vector<ApiValue> arguments;

  HostState& Host() const { return context.host; }
  const EvaluationContext& Evaluation() const { return context.evaluation; }
  /// Those that the callback reads and writes numbers with.
  NumberMarks Marks() const {
    const NumberMarks& marks = Host().settings.marks;
    return isInternational ? NumberMarks{NumberMarks().decimal, marks.uses1904} : marks;
  }

  /// Argument `index` (0-based) was left out or is missing or empty.
  bool IsOmitted(std::size_t index) const;
  /// The argument as what is asked for; nothing when it is none. A number may be an xltypeInt; a text is not converted.
  std::optional<double> NumberAt(std::size_t index) const;
  std::optional<bool> BooleanAt(std::size_t index) const;
  const XString* TextAt(std::size_t index) const;
  const Reference* ReferenceAt(std::size_t index) const;
  /// The argument as a value of a formula; an integer as its number.
  Value ValueAt(std::size_t index) const;

  /// The sheet that the argument names, as text `[Book1]Sheet1` or by a reference; the current one when it is left out;
  /// null when there is none such.
  const Sheet* SheetAt(std::size_t index) const;

  /// Whether cells may be read that are not calculated yet, for what they held before.
  bool MayReadOldValues() const { return context.place == Place::kMacroFunction || context.place == Place::kCommand; }
  /// Throws UncalculatedCell when a function on a worksheet is to read cells of which one is not calculated yet.
  void CheckCalculated(const Reference& reference) const;

  /// Reports a breach of the rules.
  void Complain(const std::string& text) const;
  /// Reports an argument (1-based) of the wrong kind and gives xlretInvXloper.
  CallbackAnswer WrongArgument(std::size_t number, std::string_view expected) const;
  /// Reports that what is called does not take so many, and gives xlretInvCount.
  CallbackAnswer WrongCount(std::size_t count) const;
  /// Reports what Excel can do and the host cannot, and gives xlretFailed.
  CallbackAnswer NotOffered(const std::string& what) const;
};

using CallbackHandler = CallbackAnswer (*)(CallbackRequest&);

}  // namespace qcalc
