// A session with an add-in, by default the one that breaks the rules.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "host/scripts/session.h"
#include "host/values/literal.h"
#include "tests/host/case_table.h"

namespace qcalc {

class SessionTest : public testing::Test {
 protected:
  explicit SessionTest(const char* addin = "misbehaving.xll") : session(ProgramFolder() / addin) {}
  /// What the host has to complain of by the end, and no test took, is a failure.
  ~SessionTest() override {
    session.Finish();
    EXPECT_THAT(Complaints(), testing::IsEmpty());
  }

  /// The formula's result as a literal.
  std::string Evaluate(const std::string& text) {
    return PrintLiteral(session.Contents(session.Evaluate(*ParseFormula(text))));
  }
  std::vector<std::string> Complaints() { return session.Host().complaints.Take(); }

  /// Checks the formulas of a table (case_table.h), about which there is nothing to complain.
  void Check(std::string_view cases) {
    for (const auto& [formula, result] : CasesOf(cases)) EXPECT_EQ(Evaluate(formula), result) << formula;
    EXPECT_THAT(Complaints(), testing::IsEmpty());
  }
  /// Checks formulas that each bring one complaint: `=FORMULA -> RESULT, part of the complaint`.
  void CheckTold(std::string_view cases) {
    for (const auto& [formula, told] : CasesOf(cases)) {
      const std::size_t comma = told.find(", ");
      EXPECT_EQ(Evaluate(formula), told.substr(0, comma)) << formula;
      EXPECT_THAT(Complaints(), testing::ElementsAre(testing::HasSubstr(told.substr(comma + 2)))) << formula;
    }
  }

  Session session;
};

}  // namespace qcalc
