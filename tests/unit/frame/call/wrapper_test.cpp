// The frame around exported functions: arguments in, results and failures out, and who owns what.
#include "frame/call/wrapper.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <new>
#include <stdexcept>
#include <thread>

#include "frame/app/xll_app.h"
#include "frame/call/thread_record.h"
#include "frame/callbacks/callbacks.h"
#include "frame/callbacks/caller.h"
#include "frame/callbacks/excel_settings.h"
#include "frame/convert/convert_array.h"
#include "frame/convert/convert_scalar.h"
#include "frame/errors/exceptions.h"
#include "frame/values/array_builder.h"
#include "frame/values/value_memory.h"
#include "frame/values/xl_oper4.h"
#include "tests/unit/fixtures/addin_excel.h"
#include "tests/unit/fixtures/failing_memory.h"

namespace quillmere::testing {
namespace {

class Wrapper : public ::testing::Test {
 protected:
  Wrapper() { CurrentExcelSettings() = {.version = 16, .excel12OrLater = true}; }
  ~Wrapper() override { CurrentExcelSettings() = {}; }
};

/// The text that a call hands back; the value is released as Excel would have it released.
XString TextAnswer(XLOPER12* answer) {
  if (TypeOf(*answer) != xltypeStr) return XTEXT("(no text)");
  const XString text(CellText(*answer));
  ReleaseOwned(*answer);
  return text;
}

/// The same of an 8-bit answer.
std::string TextAnswer4(XLOPER* answer) {
  if (answer->xltype != (xltypeStr | xlbitDLLFree)) return "(no text)";
  const std::string text(answer->val.str + 1, static_cast<unsigned char>(answer->val.str[0]));
  ReleaseOwned4(*answer);
  return text;
}

template <class Exception>
void Throw(CXlOper& result, const CXlOper*) {
  result.SetText(XTEXT("half done"));
  throw Exception();
}

TEST_F(Wrapper, WrapsEachFormOfArgumentInOrder) {
  const FunctionBody body = [](CXlOper& result, const CXlOper* arguments) {
    EXPECT_EQ(arguments[0].AsNumber(), 2.5);
    EXPECT_EQ(arguments[1].AsInteger(), -7);
    EXPECT_EQ(arguments[2].AsText(), XTEXT("key"));
    EXPECT_EQ(arguments[3].AsText(), XTEXT(""));
    EXPECT_TRUE(arguments[4].AsBoolean());
    EXPECT_FALSE(arguments[5].IsSet());
    result.SetNumber(6);
  };
  XLOPER12 number = NumberCell(2.5);
  const XLOPER12* const answer =
      CallFunction12(body, &number, std::int32_t{-7}, static_cast<const XCHAR*>(XTEXT("key")),
                     static_cast<const XCHAR*>(nullptr), std::int16_t{1}, static_cast<XLOPER12*>(nullptr));
  EXPECT_EQ(answer->xltype, xltypeNum);
  EXPECT_EQ(answer->val.num, 6);
}

TEST_F(Wrapper, AResultMayViewAnArgument) {
  const FunctionBody body = [](CXlOper& result, const CXlOper* arguments) {
    result = CXlOper::BorrowCell(arguments[1].Raw());
  };
  XLOPER12 number = NumberCell(1);
  const XCHAR* const plain = XTEXT("gone when the call ends");
  EXPECT_EQ(TextAnswer(CallFunction12(body, &number, plain)), plain);
  const CXlOper cell = CXlOper::Text(XTEXT("Excel's own"));
  EXPECT_EQ(CallFunction12(body, &number, cell.ForCallback())->val.str, cell.Raw().val.str);
}

TEST_F(Wrapper, ResultsThatExcelCannotTakeBecomeErrors) {
  const XLOPER12* answer = CallFunction12([](CXlOper&, const CXlOper*) {});
  EXPECT_EQ(answer->xltype, xltypeErr);
  EXPECT_EQ(answer->val.err, xlerrValue) << "a result never set";
  answer = CallFunction12(
      [](CXlOper& result, const CXlOper*) { result.SetNumber(std::numeric_limits<double>::infinity()); });
  EXPECT_EQ(answer->val.err, xlerrNum);
  answer = CallFunction12([](CXlOper& result, const CXlOper*) { result.SetEmpty(); });
  EXPECT_EQ(answer->xltype, xltypeNil) << "an empty cell is a value";
}

struct Foreign : std::exception {
  const char* what() const noexcept override { return "a library's words"; }
};

TEST_F(Wrapper, EveryExceptionEndsInTheCell) {
  const XLOPER12* const error = CallFunction12([](CXlOper&, const CXlOper*) { throw CXlErrorException(xlerrNA); });
  EXPECT_EQ(error->xltype, xltypeErr);
  EXPECT_EQ(error->val.err, xlerrNA);
  EXPECT_EQ(TextAnswer(CallFunction12(&Throw<CXlOutOfRangeException>)), XTEXT("#ERROR: Index out of range"));
  EXPECT_EQ(TextAnswer(CallFunction12(&Throw<std::bad_alloc>)), XTEXT("#ERROR: Memory allocation failed"));
  EXPECT_EQ(TextAnswer(CallFunction12(&Throw<Foreign>)), XTEXT("#ERROR: a library's words"));
  EXPECT_EQ(TextAnswer(CallFunction12([](CXlOper&, const CXlOper*) { throw 7; })), XTEXT("#ERROR: Unknown error"));
  EXPECT_EQ(TextAnswer(CallFunction12([](CXlOper&, const CXlOper*) {
              throw CXlRuntimeException(XString(40'000, XTEXT('m')));
            })).size(),
            32'767u);
  XLOPER12 nonsense{};
  nonsense.xltype = 0x0200;
  EXPECT_EQ(TextAnswer(CallFunction12([](CXlOper&, const CXlOper*) {}, &nonsense)), XTEXT("#ERROR: Bad XLOPER type"));
}

TEST_F(Wrapper, BelowVersion12ErrorsAreEightBitTexts) {
  CurrentExcelSettings().excel12OrLater = false;
  const XString answer = TextAnswer(
      CallFunction12([](CXlOper&, const CXlOper*) { throw CXlRuntimeException(XString(300, XTEXT('\x4E2D'))); }));
  EXPECT_EQ(answer, XTEXT("#ERROR: ") + XString(247, XTEXT('?')));
}

TEST_F(Wrapper, TheApplicationObjectMayTranslateErrorsItself) {
  struct Translator : CXllApp {
    void TranslateError(CXlOper& result, const CXlRuntimeException& error) const override {
      if (error.Message() == XTEXT("Array is empty")) throw std::runtime_error("cannot");
      result.SetNumber(1);
    }
  } app;
  EXPECT_EQ(CallFunction12(&Throw<CXlOutOfRangeException>)->val.num, 1);
  EXPECT_EQ(CallFunction12(&Throw<CXlEmptyArrayException>)->val.err, xlerrValue);
}

/// A body that has its result before it comes to `work`.
template <auto work>
void Reach(CXlOper& result, const CXlOper* arguments) {
  result.SetNumber(1);
  work(arguments[0], arguments[1]);
}

// The user breaks off, or a cell is not calculated yet: whoever asked, and whatever a failure means to it.
TEST_F(Wrapper, ExcelEndsACallByItsAnswer) {
  using enum ElementKind;
  static constexpr XStringView kName = XTEXT("Data");
  using Oper = const CXlOper&;
  const FunctionBody bodies[] = {
      &Reach<[](Oper text, Oper) { ConvertTo<kNumber>(text, false); }>,
      &Reach<[](Oper text, Oper) { ConvertTo<kBoolean>(text, false); }>,
      &Reach<[](Oper text, Oper) { ConvertArgumentToAny<kNumber, kString>(text, CConvertParamsBase(kName)); }>,
      &Reach<[](Oper, Oper range) { ConvertTo<kNumber>(range, false); }>,
      &Reach<[](Oper, Oper range) { ConvertArgument(range, CScalarConvertParams<kNumber>(kName)); }>,
      &Reach<[](Oper, Oper range) {
        ConvertArgument(range,
                        CVectorConvertParams<kNumber>(kName, CVectorConvertParamsBase::Shape::kMatrix).Optional());
      }>,
      &Reach<[](Oper, Oper) { CallingCellsSize(); }>,
      &Reach<[](Oper text, Oper) { CallExcel(xlCoerce, text); }>,
  };
  const CXlOper text = CXlOper::Text(XTEXT("12"));
  const CXlOper range = CXlOper::Reference(XLREF12{0, 1, 0, 0});
  for (const int code : {xlretAbort, xlretUncalced}) {
    for (const FunctionBody& body : bodies) {
      FakeExcel excel;
      for (const int asked : {int{xlCoerce}, int{xlfCaller}}) excel.Fail(asked, code);
      const XLOPER12* const answer = CallFunction12(body, text.ForCallback(), range.ForCallback());
      EXPECT_EQ(answer->xltype, xltypeErr) << code << ", body " << &body - bodies;
      EXPECT_EQ(answer->val.err, xlerrValue) << code << ", body " << &body - bodies;
      EXPECT_EQ(excel.AllCalls(), 1);
    }
  }
}

void MakeArray(CXlOper& result, const CXlOper*) {
  CXlArrayBuilder builder(2, 1);
  builder.PutText(0, 0, XTEXT("text in the array"));
  builder.PutNumber(1, 0, 1);
  result = builder.Finish();
}

/// Gives the first argument back as it came.
void Echo(CXlOper& result, const CXlOper* arguments) { result = arguments[0].Clone(); }

constexpr XStringView kMemoryText = XTEXT("#ERROR: Memory allocation failed");

TEST_F(Wrapper, AnAllocationThatFailsEndsInTheCell) {
  const auto call = [](FunctionBody body) {
    return [body] {
      XLOPER12* const answer = CallFunction12(body);
      const bool failed = TypeOf(*answer) == xltypeStr && CellText(*answer) == kMemoryText;
      ReleaseOwned(*answer);
      if (failed) throw std::bad_alloc();
    };
  };
  call (&MakeArray)();
  EXPECT_GT(FailEachAllocation(call(&MakeArray)), 1);
  EXPECT_GT(FailEachAllocation(call(&Throw<CXlOutOfRangeException>)), 2) << "the error's text needs memory too";

  EXPECT_GT(FailEachAllocation([] {
              XLOPER text{};
              char units[] = "\4text";
              text.val.str = units;
              text.xltype = xltypeStr;
              XLOPER* const answer = CallFunction4(&Echo, &text);
              const bool returned = answer->xltype == (xltypeStr | xlbitDLLFree) && answer->val.str[0] == 4;
              ReleaseOwned4(*answer);
              if (!returned) throw std::bad_alloc();
            }),
            2);
}

// Leaks and double frees show under the sanitizers.
TEST_F(Wrapper, TheSlotFreesWhatExcelDidNot) {
  XLOPER12* const first = CallFunction12(&MakeArray);
  EXPECT_EQ(first->xltype, xltypeMulti | xlbitDLLFree);
  XLOPER12* const second = CallFunction12(&MakeArray);
  EXPECT_EQ(first, second) << "one slot a thread";
  ReleaseOwned(*second);
  EXPECT_EQ(second->xltype, xltypeNil);
  ReleaseOwned(*second);
  XLOPER12 unmarked = NumberCell(1);
  ReleaseOwned(unmarked);
  EXPECT_EQ(unmarked.val.num, 1);
  CallFunction12(&MakeArray);
  EXPECT_EQ(CallFunction12([](CXlOper& result, const CXlOper*) { result.SetNumber(3); })->val.num, 3);
}

TEST_F(Wrapper, ValuesOfExcelsAreHandedBackAsTheyAre) {
  AddinExcel excel;
  static AddinExcel* lender;
  lender = &excel;
  XLOPER12* const lent = CallFunction12(
      [](CXlOper& result, const CXlOper*) { result = CXlOper::TakeFromExcel(lender->LendText(XTEXT("lent"))); });
  EXPECT_EQ(lent->xltype, xltypeStr | xlbitXLFree);
  EXPECT_EQ(excel.Lent(), 1u);
  static_cast<void>(CXlOper::TakeFromExcel(*lent));
  EXPECT_EQ(excel.Lent(), 0u);

  CXlOper argument = CXlOper::Text(XTEXT("argument"));
  const XLOPER12* const echoed = CallFunction12(
      [](CXlOper& result, const CXlOper* arguments) { result = CXlOper::BorrowCell(*arguments[0].Cells().first); },
      argument.ForCallback());
  EXPECT_EQ(echoed->xltype, xltypeStr);
  EXPECT_EQ(echoed->val.str, argument.ForCallback()->val.str);
}

TEST_F(Wrapper, EachThreadHasItsOwnSlotAndReleasesIt) {
  const XLOPER12* const here = CallFunction12(&MakeArray);
  const XLOPER12* there = nullptr;
  std::thread([&there] {
    EXPECT_EQ(ExistingThreadRecord(), nullptr);
    there = CallFunction12(&MakeArray);
    EXPECT_NE(ExistingThreadRecord(), nullptr);
  }).join();
  EXPECT_NE(here, there);
  EXPECT_EQ(here->xltype, xltypeMulti | xlbitDLLFree);
}

char* Text4(std::string_view text) {
  static std::vector<std::string> kept;
  kept.reserve(100);
  return kept.emplace_back(std::string(1, static_cast<char>(text.size())) + std::string(text)).data();
}

XLOPER TextCell4(std::string_view text) {
  XLOPER cell{};
  cell.val.str = Text4(text);
  cell.xltype = xltypeStr;
  return cell;
}

XLOPER NumberCell4(double number) {
  XLOPER cell{};
  cell.val.num = number;
  cell.xltype = xltypeNum;
  return cell;
}

TEST_F(Wrapper, EightBitValuesComeAndGo) {
  XLOPER cells[] = {NumberCell4(1.5), TextCell4("\x80 caf\xE9"), NumberCell4(std::nan("")), TextCell4("")};
  XLOPER array{};
  array.val.array.lparray = cells;
  array.val.array.rows = 2;
  array.val.array.columns = 2;
  array.xltype = xltypeMulti;
  XLOPER* const answer = CallFunction4(&Echo, &array);
  ASSERT_EQ(answer->xltype, xltypeMulti | xlbitDLLFree);
  ASSERT_EQ(answer->val.array.rows * answer->val.array.columns, 4);
  const XLOPER* const back = answer->val.array.lparray;
  EXPECT_EQ(back[0].val.num, 1.5);
  EXPECT_EQ(std::string_view(back[1].val.str, 7), "\x06\x80 caf\xE9");
  EXPECT_EQ(back[2].xltype, xltypeErr);
  EXPECT_EQ(back[2].val.err, xlerrNum);
  EXPECT_EQ(back[3].val.str[0], 0);
  ReleaseOwned4(*answer);
  EXPECT_EQ(answer->xltype, xltypeNil);
  ReleaseOwned4(*answer);

  XLREF area{1, 65'535, 2, 255};
  XLOPER reference{};
  reference.val.sref = {1, area};
  reference.xltype = xltypeSRef;
  const XLOPER* const sameSheet = CallFunction4(&Echo, &reference);
  EXPECT_EQ(sameSheet->xltype, xltypeSRef);
  EXPECT_EQ(sameSheet->val.sref.ref.rwLast, 65'535);
  XLMREF areas{1, {area}};
  reference.val.mref = {&areas, 77};
  reference.xltype = xltypeRef;
  const XLOPER* const otherSheet = CallFunction4(&Echo, &reference);
  EXPECT_EQ(otherSheet->xltype, xltypeRef | xlbitDLLFree);
  EXPECT_EQ(otherSheet->val.mref.idSheet, 77u);
  EXPECT_EQ(otherSheet->val.mref.lpmref->reftbl[0].colLast, 255);

  const XLOPER* const plain = CallFunction4(
      [](CXlOper& result, const CXlOper* arguments) {
        result.SetInteger(arguments[0].AsInteger() + static_cast<std::int32_t>(arguments[1].AsText().size()));
      },
      std::int32_t{100'000}, "four");
  EXPECT_EQ(plain->xltype, xltypeNum) << "too large for a 16-bit integer";
  EXPECT_EQ(plain->val.num, 100'004);
}

/// A short reference; on another sheet a list of one.
XLOPER Reference4(XLREF area, std::uint16_t count = 1) {
  XLOPER value{};
  value.val.sref = {count, area};
  value.xltype = xltypeSRef;
  return value;
}

TEST_F(Wrapper, EightBitReferencesAreChecked) {
  XLMREF upsideDown{1, {{2, 1, 0, 0}}};
  XLOPER elsewhere{};
  elsewhere.val.mref = {&upsideDown, 77};
  elsewhere.xltype = xltypeRef;
  for (XLOPER reference : {Reference4({2, 1, 0, 0}), Reference4({1, 1, 3, 2}), Reference4({1, 1, 2, 2}, 2), elsewhere})
    EXPECT_EQ(TextAnswer4(CallFunction4(&Echo, &reference)), "#ERROR: Bad XLOPER type");
}

TEST_F(Wrapper, EightBitTextsHaveWhatTheCodePageHas) {
  const FunctionBody lookAlikes = [](CXlOper& result, const CXlOper*) {
    result.SetText(XTEXT("caf\u00E9 \u20AC \u0100\u03B1\u221E\u0080 \U0001F600 \xD83D."));
  };
  EXPECT_EQ(TextAnswer4(CallFunction4(lookAlikes)), "caf\xE9 \x80 ???? ? ?.");
  const FunctionBody longFailure = [](CXlOper&, const CXlOper*) {
    throw CXlRuntimeException(XString(100, XTEXT('\x4E2D')) + XString(300, XTEXT('m')));
  };
  EXPECT_EQ(TextAnswer4(CallFunction4(longFailure)), "#ERROR: " + std::string(100, '?') + std::string(147, 'm'));
}

TEST_F(Wrapper, WhatEightBitsCannotHoldIsAnError) {
  const FunctionBody longText = [](CXlOper& result, const CXlOper*) { result.SetText(XString(256, XTEXT('x'))); };
  const FunctionBody longTextInArray = [](CXlOper& result, const CXlOper*) {
    CXlArrayBuilder builder(1, 2);
    builder.PutText(0, 0, XString(256, XTEXT('x')));
    builder.PutText(0, 1, XString(255, XTEXT('x')));
    result = builder.Finish();
  };
  const FunctionBody wide = [](CXlOper& result, const CXlOper*) {
    CXlArrayBuilder builder(1, 257);
    builder.Fill(builder.Row(0), 257, 1, NumberCell(1));
    result = builder.Finish();
  };
  const FunctionBody tall = [](CXlOper& result, const CXlOper*) {
    CXlArrayBuilder builder(65'536, 1);
    builder.Fill(builder.Row(0), 65'536, 1, NumberCell(1));
    result = builder.Finish();
  };
  const FunctionBody farReference = [](CXlOper& result, const CXlOper*) {
    result = CXlOper::Reference(XLREF12{0, 65'536, 0, 0});
  };
  for (const FunctionBody body : {longText, wide, tall, farReference}) {
    const XLOPER* const answer = CallFunction4(body);
    EXPECT_EQ(answer->xltype, xltypeErr);
    EXPECT_EQ(answer->val.err, xlerrValue);
  }
  const XLOPER* const mixed = CallFunction4(longTextInArray);
  ASSERT_EQ(mixed->xltype, xltypeMulti | xlbitDLLFree);
  EXPECT_EQ(mixed->val.array.lparray[0].val.err, xlerrValue);
  EXPECT_EQ(static_cast<unsigned char>(mixed->val.array.lparray[1].val.str[0]), 255);

  for (const std::uint16_t type : {std::uint16_t{xltypeStr}, std::uint16_t{xltypeNum | 0x2000}}) {
    XLOPER nonsense{};
    nonsense.xltype = type;
    XLOPER array{};
    array.val.array = {&nonsense, 1, 1};
    array.xltype = xltypeMulti;
    for (XLOPER* const argument : {&nonsense, &array})
      EXPECT_EQ(TextAnswer4(CallFunction4(&Echo, argument)), "#ERROR: Bad XLOPER type") << type;
  }
}

}  // namespace
}  // namespace quillmere::testing
