// Cells of a sheet, and what the functions of the companion give of them; companion_test.py reads the same tables.
#pragma once

#include <string_view>

namespace qcalc {

// A1 to A5, A7, A8 and A10 are filled; D2 to D5 are merged. In {} is an array formula.
constexpr std::string_view kCompanionCells = R"(
    A1 -> 1 | A2 -> 2 | A3 -> 3 | A4 -> 4 | A5 -> 5 | A7 -> 7 | A8 -> 8 | A10 -> 10 | B9 -> ="" | C3 -> =NA()
    D2 -> merged | F12:F13 -> {=2*{1;2}} | KN20 -> far
)";
constexpr std::string_view kCompanionHidden = R"(
    6 -> hidden | 8 -> hidden
)";
// A whole column, cells of one, the cells below the last; an empty text of a formula, an error, merged cells. Gaps:
// over the hidden row that is empty, not counting the hidden one before the gap; from a hidden row and an empty one.
constexpr std::string_view kCompanionCases = R"(
    COUNTROWS A:A -> 10 | COUNTROWS A3:A4 -> 8 | COUNTROWS A10 -> 1 | COUNTROWS A11 -> 0 | COUNTROWS A1:B1 -> 10
    COUNTROWS B:B -> 9 | COUNTROWS C1 -> 3 | COUNTROWS D1 -> 2 | COUNTROWS E:E -> 0 | COUNTROWS KO1 -> 0
    COUNTROWS 1:1 -> 20 | COUNTROWS A2,C9 -> 9 | COUNTROWS C9,B9,A2 -> 9 | COUNTROWS E1,E3:E4 -> 0
    COUNTCONTIGROWS A1 -> 7 | COUNTCONTIGROWS A:A -> 7 | COUNTCONTIGROWS A6 -> 2 | COUNTCONTIGROWS A8 -> 0
    COUNTCONTIGROWS A9 -> 0 | COUNTCONTIGROWS A10 -> 1 | COUNTCONTIGROWS A1:B1 -> 10 | COUNTCONTIGROWS A1,B3 -> 10
    COUNTCONTIGROWS B9,A1 -> 10 | COUNTCONTIGROWS B9 -> 1 | COUNTCONTIGROWS 1:1 -> 10 | COUNTCONTIGROWS 9:9 -> 2
    COUNTCONTIGROWS C3 -> 1 | COUNTCONTIGROWS D2 -> 1 | COUNTCONTIGROWS E1 -> 0 | COUNTCONTIGROWS A1000 -> 0
    COUNTUSEDROWS A:A -> 20 | COUNTUSEDROWS A20 -> 1 | COUNTUSEDROWS A23 -> 0 | COUNTUSEDROWS KZ7,A5 -> 16
    HASFORMULA A:A -> 0 | HASFORMULA B:B -> 1 | HASFORMULA C3 -> 1 | HASFORMULA A1:D2 -> 0 | HASFORMULA F13 -> 1
    HASFORMULA A1,C1:C2 -> 0 | HASFORMULA A1,C1:C3 -> 1 | HASFORMULA KO1:KO9 -> 0
)";

}  // namespace qcalc
