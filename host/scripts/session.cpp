#include "host/scripts/session.h"

#include <mutex>

#include "host/addin/call_guards.h"
#include "host/addin/evaluation_watch.h"
#include "host/calculation/builtins/builtin.h"
#include "host/calculation/evaluator.h"
#include "host/calculation/recalculation.h"
#include "host/callbacks/callbacks.h"
#include "host/library/allocation.h"
#include "host/library/answers.h"
#include "host/text/near_names.h"
#include "host/text/shown_text.h"
#include "host/text/utf8.h"
#include "host/values/value_order.h"

namespace qcalc {
namespace {

constexpr const char* kClosing = "xlAutoClose";
constexpr const char* kRemoving = "xlAutoRemove";

/// What formulas of macros call: commands too.
class Macros final : public IAddinFunctions {
 public:
  explicit Macros(Addin& addin) : addin_(addin) {}

  const AddinFunction* Find(XStringView name) const override {
    const AddinFunction* const command = addin_.FindCommand(name);
    return command ? command : addin_.Find(name);
  }
  Value Call(const AddinFunction& function, std::span<const Value> operands,
             const EvaluationContext& context) override {
    EvaluationContext inner = context;
    inner.addin = &addin_;
    return addin_.Call(function, operands, inner);
  }

 private:
  Addin& addin_;
};

}  // namespace

Session::Session(std::filesystem::path addinPath)
    : addinPath_(std::move(addinPath)),
      objects_(host_),
      addin_(host_, &MdCallBack12),
      sheet_(&host_.workbooks.BookNamed(XTEXT("Book1")).SheetNamed(XTEXT("Sheet1"))) {
  ProcessAnswers().Reset();
  AddinAllocations().Stop();
  AddinAllocations().TakeUnmet();  // what an earlier session had armed is nothing of this one's
}

Session::~Session() { Finish(); }

EvaluationContext Session::Context() {
  return {&host_.workbooks, sheet_, &names_, &addin_, caller_, host_.settings.marks};
}

int Session::LoadAndOpen() {
  std::string error;
  objects_.Begin();
  if (!addin_.IsLoaded() && !addin_.Load(addinPath_, error)) throw AddinFailure("the add-in did not load: " + error);
  const std::optional<int> result = addin_.CallEntryPoint("xlAutoOpen", Context());
  if (!result) throw AddinFailure("the add-in exports no xlAutoOpen");
  isOpen_ = isOpen_ || *result != 0;
  isClosed_ = isRemoved_ = false;
  return *result;
}

int Session::CallOpen() {
  const EvaluationWatch watch(host_);
  return LoadAndOpen();
}

void Session::Open() {
  if (isOpen_ || addin_.IsLoaded()) return;
  if (LoadAndOpen() != 0) return;
  std::string message = "xlAutoOpen failed";
  for (const std::string& complaint : host_.complaints.Take()) message += "\n  " + complaint;
  throw AddinFailure(message);
}

std::optional<int> Session::CallEntryPoint(const char* name) {
  if (!addin_.IsLoaded()) return std::nullopt;
  objects_.ShowBooks();
  if (name == std::string_view(kRemoving)) isRemoved_ = !isClosed_;
  if (name == std::string_view(kClosing)) isClosed_ = true;
  const EvaluationWatch watch(host_);
  return addin_.CallEntryPoint(name, Context());
}

void Session::RaiseEvent(XStringView name) {
  if (!addin_.IsLoaded()) return;
  const Value macro = *host_.application.Property(name);
  if (!macro.IsText() || macro.AsText().empty() || host_.application.IsForeign(macro.AsText())) return;
  if (const AddinFunction* const command = addin_.FindCommand(macro.AsText()))
    addin_.Call(*command, {}, Context());
  else
    host_.complaints.Add("no command is named " + ToUtf8(macro.AsText()) + ", which stands in " + ToUtf8(name));
}

void Session::SelectSheet(Sheet& sheet) {
  host_.newBooks.clear();
  if (&sheet == sheet_) return;
  RaiseEvent(ApplicationState::kSheetDeactivated);
  sheet_ = &sheet;
  objects_.ShowBooks();
  RaiseEvent(ApplicationState::kSheetActivated);
}

void Session::Reload(int count) {
  for (int i = 0; i < count; ++i) {
    Finish();
    Open();
  }
}

void Session::Finish() {
  CloseDialog();
  if (!addin_.IsLoaded()) return;
  objects_.ShowBooks();
  if (isOpen_ && addin_.CallEntryPoint(kClosing, Context()).value_or(1) != 1)
    host_.complaints.Add("xlAutoClose did not return 1");
  addin_.Unload();
  objects_.End(isOpen_ && !isRemoved_);
  isOpen_ = false;
}

EvaluationContext Session::Prepare() {
  Open();
  if (caller_.areas.empty()) {
    Sheet& sheet = host_.workbooks.BookNamed(XTEXT("Book1")).SheetNamed(XTEXT("Calc"));
    caller_ = {sheet.Id(), {Area{}}};
  }
  objects_.ShowBooks();
  const EvaluationContext context = Context();
  failures_.clear();
  for (const CalculationFailure& failure : qcalc::Recalculate(host_.workbooks, context, {&unknown_, nullptr}).failures)
    failures_.push_back(qcalc::Describe(failure, host_.workbooks));
  return context;
}

CalculationOutcome Session::CalculateBooks(const BookCalculation& settings) {
  Open();
  objects_.ShowBooks();
  host_.settings.marks.uses1904 = settings.uses1904;
  host_.settings.hasWorkbookMacros = true;
  host_.settings.watchesFolder = false;
  const std::string what = "a function of the book's";
  const FolderGuard folder(host_.complaints, what);
  EvaluationContext context = Context();
  context.profile = settings.profile;
  context.refusesUnknown = true;
  CalculationThreads threads(host_.mainThread, settings.threads);
  CalculationOutcome outcome = qcalc::Recalculate(host_.workbooks, context, {&unknown_, &threads, settings.mostBytes});
  RaiseEvent(ApplicationState::kCalculated);
  return outcome;
}

// A reference is a result only once all of it is calculated: it will be read.
Value Session::EvaluateIn(const EvaluationContext& context, const Formula& formula) {
  Value result = qcalc::Evaluate(formula, context, &unknown_);
  if (result.IsReference()) CheckCalculated(result.AsReference(), host_.workbooks);
  return result;
}

Value Session::Evaluate(const Formula& formula) {
  const EvaluationContext context = Prepare();
  Value result;
  {
    const EvaluationWatch watch(host_);
    result = EvaluateIn(context, formula);
  }
  RaiseEvent(ApplicationState::kCalculated);
  return result;
}

Value Session::Run(const Formula& formula) {
  EvaluationContext context = Prepare();
  Macros macros(addin_);
  context.addin = &macros;
  const EvaluationWatch watch(host_);
  return EvaluateIn(context, formula);
}

Value Session::EvaluateQuietly(const Formula& formula) { return EvaluateIn(Prepare(), formula); }

Value Session::Recalculate(int count, const Formula& formula) {
  Value result;
  for (int i = 0; i < count; ++i) {
    const EvaluationContext context = Prepare();
    {
      const EvaluationWatch watch(host_);
      result = EvaluateIn(context, formula);
    }
    RaiseEvent(ApplicationState::kCalculated);
    if (Sheet* sheet = host_.workbooks.FindSheet(caller_.sheet))
      sheet->WriteResult(caller_.areas[0], Dereference(result, host_.workbooks));
  }
  return result;
}

std::vector<Value> Session::EvaluateInParallel(int threads, int count, const Formula& formula) {
  const EvaluationContext context = Prepare();
  std::mutex mutex;
  std::vector<Value> results;
  {
    const EvaluationWatch watch(host_);
    host_.mainThread.RunOnThreads(threads, [&](int) {
      for (int i = 0; i < count; ++i) {
        Value result = EvaluateIn(context, formula);
        const Value contents = Dereference(result, host_.workbooks);
        const std::lock_guard lock(mutex);
        if (results.empty() || !SameValue(Dereference(results[0], host_.workbooks), contents))
          results.push_back(std::move(result));
      }
    });
  }
  RaiseEvent(ApplicationState::kCalculated);
  return results;
}

void Session::ShowDialog(XStringView function, XString title, bool isLabelled) {
  Open();
  const RegisteredFunction* const registered = host_.registry.Find(function);
  if (!registered || registered->IsCommand())
    throw FormulaError("no function of the add-in is named " + ToUtf8(function));
  DialogContents contents{DialogPage(*registered), std::move(title), isLabelled};
  if (dialog_ && dialog_->IsOpen()) return dialog_->Change(std::move(contents));
  CloseDialog();
  dialog_ = OpenFunctionDialog(std::move(contents), objects_.MainWindow(), host_.complaints);
}

IFunctionDialog& Session::Dialog() {
  if (!dialog_) throw std::runtime_error("no dialog has been opened");
  return *dialog_;
}

std::vector<std::string> Session::KnownNames(UnknownNames::Kind kind) const {
  std::vector<std::string> known;
  if (kind == UnknownNames::Kind::kSheet) {
    for (const auto& book : host_.workbooks.Books())
      for (const auto& sheet : book->Sheets()) {
        known.push_back(ToUtf8(sheet->Name()));
        known.push_back(ToUtf8(sheet->FullName()));
      }
    return known;
  }
  if (kind == UnknownNames::Kind::kName)
    for (const auto& [name, value] : names_) known.push_back(ToUtf8(name));
  for (const XStringView name : BuiltinNames()) known.push_back(ToUtf8(name));
  for (const RegisteredFunction* function : host_.registry.All())
    if (!function->IsCommand()) known.push_back(ToUtf8(function->name));
  return known;
}

std::vector<std::string> Session::TakeHints() {
  std::vector<std::string> hints;
  for (const auto& [kind, name] : unknown_.Take()) {
    const std::string written = ToUtf8(name);
    const char* what = kind == UnknownNames::Kind::kFunction ? "no function is named "
                       : kind == UnknownNames::Kind::kSheet  ? "no sheet is named "
                                                             : "no value, and no cell, is named ";
    hints.push_back(ShownMessage(what + written + NearNamesHint(written, KnownNames(kind))));
  }
  return hints;
}

std::string Session::Describe(const UncalculatedCell& cell) const {
  const Area area = Area::OfCell(cell.position.row, cell.position.column);
  return "it reads " + ReferenceToText({cell.sheet, {area}}, host_.workbooks) + ", which could not be calculated";
}

Timing Session::Time(int count, const Formula& formula, std::string& functionName) {
  const EvaluationContext context = Prepare();
  const EvaluationWatch watch(host_, false);
  const std::optional<PreparedCall> call = PrepareOutermostCall(formula, context);
  if (!call) throw FormulaError("the formula calls no function of the add-in");
  if (call->refused)
    throw FormulaError("Excel would not make the call: several areas stand where the function takes a value");
  const auto& function = static_cast<const RegisteredFunction&>(*call->function);
  functionName = ToUtf8(function.name);
  return addin_.Time(function, call->operands, count, context);
}

}  // namespace qcalc
