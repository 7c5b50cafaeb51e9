// Makes calls of the add-in's functions, with their tables where they belong.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/scripts/session.h"
#include "tests/models/calling_place.h"

namespace qcalc::models {

class Caller {
 public:
  explicit Caller(Session& session);

  const CallingPlaces& Places() const { return places_; }

  /// Writes the table somewhere, on the current sheet or another, at the sheet's lower end too, and refers to it and to
  /// `rowsBelow` empty rows under it. The table before it is gone.
  Value PutInSheet(const ArrayPtr& table, std::int32_t rowsBelow);

  /// Hides those rows of the table, and no others.
  void HideRows(const std::vector<bool>& isHidden);

  /// Calls the function that is registered by that name; there is an operand for each of its arguments. A reference
  /// is passed on where the function takes one, else what it holds.
  Value Call(XStringView function, const std::vector<Value>& operands, const CallingPlace& place);

  /// The same call on several threads at once: a result each.
  std::vector<Value> CallOnThreads(int threads, XStringView function, const std::vector<Value>& operands,
                                   const CallingPlace& place);

  /// Callbacks of the last call.
  int Callbacks() const;

  /// What the host has to complain of since it was last asked; "" when nothing.
  std::string Complaints() const;

  /// The call as a formula, with where it was made from.
  std::string Describe(XStringView function, const std::vector<Value>& operands, const CallingPlace& place) const;

  /// A value as a formula writes it.
  std::string Print(const Value& value) const;

  /// Where the last table stands, and how it was handed over.
  std::string DescribeTable() const;

 private:
  std::string At(const Reference& reference) const;

  Session& session_;
  CallingPlaces places_;
  int tables_ = 0;
  Reference lastTable_;
};

}  // namespace qcalc::models
