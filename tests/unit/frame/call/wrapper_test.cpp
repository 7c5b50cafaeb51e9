// The frame around exported functions: arguments in, results and failures out, and who owns what.
#include "frame/call/wrapper.h"

#include <gtest/gtest.h>

#include <new>

#include "frame/callbacks/excel_settings.h"
#include "frame/errors/exceptions.h"
#include "frame/values/array_builder.h"
#include "frame/values/value_memory.h"
#include "tests/unit/fixtures/raw_values.h"

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

template <class Exception>
void Throw(CXlOper& result, const CXlOper*) {
  result.SetText(XTEXT("half done"));
  throw Exception();
}

/// Gives the first argument back as it came.
void Echo(CXlOper& result, const CXlOper* arguments) { result = arguments[0].Clone(); }

TEST_F(Wrapper, WrapsEachFormOfArgumentInOrder) {
  const FunctionBody body = [](CXlOper& result, const CXlOper* arguments) {
    EXPECT_EQ(arguments[0].AsInteger(), -7);
    EXPECT_EQ(arguments[1].AsText(), XTEXT("key"));
    EXPECT_EQ(arguments[2].AsText(), XTEXT(""));
    EXPECT_TRUE(arguments[3].AsBoolean());
    EXPECT_FALSE(arguments[4].IsSet());
    result.SetNumber(6);
  };
  const XString tooLong(32'768, XTEXT('x'));
  const XCHAR* const key = XTEXT("key");
  constexpr std::int32_t kInt = -7;
  const XCHAR* noText = nullptr;
  const char* noText4 = nullptr;
  EXPECT_EQ(CallFunction12(body, kInt, key, noText, std::int16_t{1}, static_cast<XLOPER12*>(nullptr))->val.num, 6);
  EXPECT_EQ(CallFunction4(body, kInt, "key", noText4, std::int16_t{1}, static_cast<XLOPER*>(nullptr))->val.num, 6);
  EXPECT_EQ(TextAnswer(CallFunction12(&Echo, tooLong.c_str())), XTEXT("#ERROR: String is too long"));
  EXPECT_EQ(TextAnswer(CallFunction12(&Echo, tooLong.c_str() + 1)).size(), 32'767u);
  EXPECT_EQ(TextAnswer(CallFunction12(&Echo, std::string(32'768, 'x').c_str())), XTEXT("#ERROR: String is too long"));
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

struct Foreign : std::exception {
  const char* what() const noexcept override { return "a library's words"; }
};

TEST_F(Wrapper, EveryExceptionEndsInTheCell) {
  const auto answerOf = [](FunctionBody body) { return TextAnswer(CallFunction12(body)); };
  const XLOPER12* const error = CallFunction12([](CXlOper&, const CXlOper*) { throw CXlErrorException(xlerrNA); });
  EXPECT_TRUE(IsErrorCell(*error) && error->val.err == xlerrNA);
  EXPECT_EQ(answerOf(&Throw<CXlOutOfRangeException>), XTEXT("#ERROR: Index out of range"));
  EXPECT_EQ(answerOf(&Throw<std::bad_alloc>), XTEXT("#ERROR: Memory allocation failed"));
  EXPECT_EQ(answerOf(&Throw<Foreign>), XTEXT("#ERROR: a library's words"));
  EXPECT_EQ(answerOf([](CXlOper&, const CXlOper*) { throw 7; }), XTEXT("#ERROR: Unknown error"));
  const XString longest =
      answerOf([](CXlOper&, const CXlOper*) { throw CXlRuntimeException(XString(40'000, XTEXT('m'))); });
  EXPECT_EQ(longest.size(), 32'767u);
  XLOPER12 nonsense = RawValue(0x200);
  EXPECT_EQ(TextAnswer(CallFunction12([](CXlOper&, const CXlOper*) {}, &nonsense)), XTEXT("#ERROR: Bad XLOPER type"));
}

TEST_F(Wrapper, BelowVersion12ErrorsAreEightBitTexts) {
  CurrentExcelSettings().excel12OrLater = false;
  const XString answer = TextAnswer(
      CallFunction12([](CXlOper&, const CXlOper*) { throw CXlRuntimeException(XString(300, XTEXT('\x4E2D'))); }));
  EXPECT_EQ(answer, XTEXT("#ERROR: ") + XString(247, XTEXT('?')));
}

void MakeArray(CXlOper& result, const CXlOper*) {
  CXlArrayBuilder builder(2, 1);
  builder.PutText(0, 0, XTEXT("text in the array"));
  builder.PutNumber(1, 0, 1);
  result = builder.Finish();
}

// Leaks and double frees show under the sanitizers.
TEST_F(Wrapper, TheSlotFreesWhatExcelDidNot) {
  XLOPER12* const first = CallFunction12(&MakeArray);
  EXPECT_EQ(first->xltype, xltypeMulti | xlbitDLLFree);
  XLOPER12* const second = CallFunction12(&MakeArray);
  EXPECT_EQ(first, second) << "one slot a thread";
  EXPECT_EQ(CallFunction12([](CXlOper& result, const CXlOper*) { result.SetNumber(3); })->val.num, 3);
  ReleaseOwned(*second);
  EXPECT_EQ(second->val.num, 3) << "nothing of ours";
}

}  // namespace
}  // namespace quillmere::testing
