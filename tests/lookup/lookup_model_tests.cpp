// Holds the lookup functions against the model: random calls, each made through the add-in's exports and worked out by
// the model, must give the same.
#include <gtest/gtest.h>

#include <chrono>
#include <iostream>

#include "drawn_calls.h"
#include "host/addin/evaluation_watch.h"
#include "host/scripts/session.h"
#include "host/text/utf8.h"
#include "host/values/literal.h"
#include "tests/addin_program.h"

namespace qcalc::lookup {
namespace {

struct Settings {
  std::uint64_t seed = 1;
  std::uint64_t cases = 3000;
  int seconds = 0;
};

/// Makes calls of the add-in, with their tables where they belong.
class Caller {
 public:
  explicit Caller(Session& session) : session_(session) {
    Workbooks& workbooks = session.ItsWorkbooks();
    const IDSHEET calc = workbooks.BookNamed(XTEXT("Book1")).SheetNamed(XTEXT("Calc")).Id();
    const IDSHEET other = workbooks.BookNamed(XTEXT("Book1")).SheetNamed(XTEXT("Other")).Id();
    const IDSHEET far = workbooks.BookNamed(XTEXT("Book2")).SheetNamed(XTEXT("Calc")).Id();
    places_ = {{"Book1", calc, 0, 0, 1}, {"Book1", calc, 0, 3, 1},  {"Book1", calc, 6, 2, 1}, {"Book1", other, 6, 2, 1},
               {"Book2", far, 6, 2, 1},  {"Book1", calc, 0, 5, 40}, {"Book2", far, 3, 0, 9}};
  }

  const CallingPlaces& Places() const { return places_; }

  Value Make(const LookupCall& call) {
    const auto* function = static_cast<const RegisteredFunction*>(session_.ItsAddin().Find(call.function->name));
    if (!function) throw AddinFailure(ToUtf8(call.function->name) + " is not registered");
    const Value table = call.isReference ? PutInSheet(call) : Value::OfArray(call.table);
    const EvaluationContext context = ContextOf(call);
    const EvaluationWatch watch(session_.ItsAddin(), false);
    return session_.ItsAddin().Call(*function, Operands(*function, call, table), context);
  }

  /// Callbacks of the last call.
  int Callbacks() const {
    int made = 0;
    for (const XlCallback& callback : kXlCallbacks) made += session_.ItsAddin().meter.Calls(callback);
    return made;
  }

  /// What the host has to complain of.
  std::string Complaints() const {
    std::string all;
    for (const std::string& text : session_.ItsAddin().complaints.Take()) all += text + "; ";
    for (const std::string& text : session_.ItsAddin().books.Close()) all += text + "; ";
    return all;
  }

  /// The call as a formula with its table written out, and where that table stands.
  std::string Describe(const LookupCall& call) const {
    const auto* function = static_cast<const RegisteredFunction*>(session_.ItsAddin().Find(call.function->name));
    std::string text = "=" + ToUtf8(call.function->name) + "(";
    for (const Value& operand : Operands(*function, call, Value::OfArray(call.table)))
      text += (text.back() == '(' ? "" : ",") + (operand.IsMissing() ? "" : PrintLiteral(operand));
    text += ")\n  called from " + At({call.caller.sheet, {CallingArea(call.caller)}});
    if (!call.isReference) return text;
    return text + ", the table in " + At(lastTable_) + (call.rowsBelow ? " with empty rows below it" : "") +
           (session_.ItsAddin().settings.shortReferences ? ", handed over as SRef" : ", handed over as Ref");
  }

 private:
  static Area CallingArea(const CallingPlace& place) {
    return {place.row, place.row + place.rows - 1, place.column, place.column};
  }

  std::string At(const Reference& reference) const { return ReferenceToText(reference, session_.ItsWorkbooks()); }

  EvaluationContext ContextOf(const LookupCall& call) {
    return {&session_.ItsWorkbooks(),
            &session_.CurrentSheet(),
            &session_.Names(),
            &session_.ItsAddin(),
            {call.caller.sheet, {CallingArea(call.caller)}}};
  }

  /// Writes the table somewhere, on the current sheet or another, at the sheet's lower end too, and refers to it.
  Value PutInSheet(const LookupCall& call) {
    ++tables_;
    if (Sheet* sheet = session_.ItsWorkbooks().FindSheet(lastTable_.sheet)) sheet->Clear(lastTable_.areas[0]);
    Sheet& sheet = tables_ % 3 == 0 ? session_.ItsWorkbooks().BookNamed(XTEXT("Book1")).SheetNamed(XTEXT("Data"))
                                    : session_.CurrentSheet();
    const std::int32_t rows = call.table->Rows() + call.rowsBelow;
    Area area{.firstRow = tables_ % 7, .firstColumn = tables_ % 5};
    if (tables_ % 11 == 0) area.firstRow = kXlMaxRows - rows;
    area.lastRow = call.rowsBelow > 3 ? kXlMaxRows - 1 : area.firstRow + rows - 1;
    area.lastColumn = area.firstColumn + call.table->Columns() - 1;
    sheet.Set({area.firstRow, area.firstRow, area.firstColumn, area.firstColumn}, Value::OfArray(call.table));
    session_.ItsAddin().settings.shortReferences = tables_ % 2 == 0;
    lastTable_ = {sheet.Id(), {area}};
    return Value::OfReference(lastTable_);
  }

  static std::vector<Value> Operands(const RegisteredFunction& function, const LookupCall& call, const Value& table) {
    std::vector<Value> operands = {call.keys, table};
    if (call.function->returnsValues) operands.push_back(call.answerColumns);
    operands.insert(operands.end(), {call.sorted, call.exactMatch, call.lookupColumns});
    if (call.function->wanted == Wanted::kFirst) operands.push_back(call.memory);
    if (call.function->wanted == Wanted::kNth)
      operands.push_back(call.position ? Value::Number(*call.position) : Value::Missing());
    EXPECT_EQ(operands.size(), function.operands.size());
    return operands;
  }

  Session& session_;
  CallingPlaces places_;
  int tables_ = 0;
  Reference lastTable_;
};

class RandomCalls : public testing::Test {
 public:
  RandomCalls(Caller& caller, const Settings& settings, TableKind kind)
      : caller_(caller), settings_(settings), kind_(kind) {}

  void TestBody() override {
    constexpr int kMostTold = 5;
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(settings_.seconds);
    std::uint64_t number = 0;
    for (int told = 0; told < kMostTold; ++number) {
      const bool isDone = settings_.seconds > 0 ? std::chrono::steady_clock::now() >= end : number == settings_.cases;
      if (isDone) break;
      if (!Try(number)) ++told;
    }
    std::cout << number << " calls\n";
  }

 private:
  /// Memory lasts from call to call, in the add-in as in the model.
  bool Try(std::uint64_t number) {
    const LookupCall call = DrawCall(settings_.seed, number, kind_, caller_.Places());
    const Value expected = Expected(call, memory_);
    const Value actual = caller_.Make(call);
    std::string wrong = caller_.Complaints();
    if (!SameValue(expected, actual))
      wrong += "\n  expected " + PrintLiteral(expected) + "\n  got      " + PrintLiteral(actual);
    if (kind_ == TableKind::kArray && caller_.Callbacks() > 0) wrong += "\n  an array is searched with callbacks";
    if (wrong.empty()) return true;
    ADD_FAILURE() << "--seed " << settings_.seed << ", call " << number << ":\n  " << caller_.Describe(call) << wrong;
    return false;
  }

  Caller& caller_;
  const Settings& settings_;
  TableKind kind_;
  MemoryModel memory_;
};

void Register(const char* name, Caller& caller, const Settings& settings, TableKind kind) {
  testing::RegisterTest(
      "LookupModel", name, nullptr, nullptr, __FILE__, __LINE__,
      [&caller, &settings, kind]() -> testing::Test* { return new RandomCalls(caller, settings, kind); });
}

int RunTests(const std::filesystem::path& addin, const Settings& settings) {
  Session session(addin);
  session.Open();
  Caller caller(session);
  Register("Arrays", caller, settings, TableKind::kArray);
  Register("References", caller, settings, TableKind::kReference);
  std::cout << "seed " << settings.seed << std::endl;
  return RunTestsAndFinish(session);
}

int RunProgram(const std::vector<std::string>& arguments) {
  Settings settings;
  const auto addOptions = [&](CLI::App& app) {
    app.add_option("--seed", settings.seed, "what all random choices follow from");
    app.add_option("--cases", settings.cases, "calls with arrays, and as many with references");
    app.add_option("--seconds", settings.seconds, "seconds of calls of each kind, in place of their number");
  };
  return RunAddinProgram("lookup_model_tests", "Holds the lookup functions against a model of their rules.", arguments,
                         addOptions, [&](const std::filesystem::path& addin) { return RunTests(addin, settings); });
}

}  // namespace
}  // namespace qcalc::lookup

int main(int count, char** arguments) {
  qcalc::PrepareStreams();
  return qcalc::lookup::RunProgram(qcalc::ProgramArguments(count, arguments));
}
