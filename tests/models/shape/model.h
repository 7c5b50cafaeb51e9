// Slow and plain models of the functions that cut, extend, insert into and repeat arrays, and of the totals over rows
// and columns: what a random call must give, worked out from the rules that the help pages state. They share nothing
// with the add-in.
#pragma once

#include <optional>

#include "tests/models/field_calls.h"

namespace qcalc::shape {

using models::FieldCall;
using models::Grid;

/// Draws the call of a number, which all follows from. What the rules leave open is avoided.
FieldCall DrawSlices(std::uint64_t number);
FieldCall DrawReshape(std::uint64_t number);
FieldCall DrawTotals(std::uint64_t number);

/// What a call must give.
Value ExpectedSlices(const FieldCall& call);
Value ExpectedReshape(const FieldCall& call);
Value ExpectedTotals(const FieldCall& call);

inline constexpr XStringView kReshapes[] = {XTEXT("RESIZE"),        XTEXT("PAD.ARRAY"),   XTEXT("SPLICEROWS"),
                                            XTEXT("SPLICECOLS"),    XTEXT("SPLICECELLS"), XTEXT("REPEAT"),
                                            XTEXT("REVERSE.ARRAY"), XTEXT("UNPIVOT"),     XTEXT("INTERSECT")};
inline constexpr XStringView kTotals[] = {XTEXT("SUMCOLS"), XTEXT("AVERAGECOLS"), XTEXT("COUNTCOLS"),
                                          XTEXT("SUMROWS"), XTEXT("AVERAGEROWS"), XTEXT("COUNTROWS"),
                                          XTEXT("TOTALS"),  XTEXT("HTOTALS"),     XTEXT("AGGREGATES")};

// What the models share.

inline Value Told(XStringView text) { return Value::Text(XString(text)); }
inline const Value kValueError = Value::Error(xlerrValue);

/// The reference to cells of another, from its first cell; #REF! for what is beyond the sheet.
Value Part(const Reference& table, std::int32_t row, std::int32_t column, std::int32_t rows, std::int32_t columns);

/// What two selectors pick of the first operand's cells, from 0, or the text that says why one of them does not.
struct Slice {
  std::vector<std::int32_t> rows;
  std::vector<std::int32_t> columns;
  std::optional<Value> failure;

  Grid Of(const Grid& table) const;
};
Slice ReadSlice(const FieldCall& call, const Value& rows, const Value& columns, XStringView prefix);

}  // namespace qcalc::shape
