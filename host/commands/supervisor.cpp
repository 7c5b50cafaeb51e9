#include "host/commands/supervisor.h"

#include <algorithm>
#include <exception>
#include <iostream>
#include <optional>

#include "host/process/last_words.h"
#include "host/process/progress_line.h"
#include "host/process/worker.h"

namespace qcalc {
namespace {

ExitStatus RunAsWorker(const Work& work, Journal& journal) {
  SetProcessJournal(journal);
  LetFaultsEndTheProcess();
  std::set_terminate(EndWithLastWords);
  const ExitStatus status = StatusOf([&] { return work.run(static_cast<std::size_t>(journal.item)); });
  journal.status = status;
  journal.isFinished = true;
  return status;
}

std::string DescribeDeath(const Journal& journal, const ProcessEnd& end) {
  const std::string words = journal.lastWords.Get();
  const std::string calls = journal.OpenCalls();
  return (calls.empty() ? "the program died outside any call of the add-in's" : "the add-in died in " + calls) + ": " +
         (words.empty() ? end.reason : words);
}

/// What was being done, to somebody who did not wait for the end.
std::string DescribeWork(const Work& work, const Journal& journal) {
  const std::string calls = journal.OpenCalls();
  return work.items[static_cast<std::size_t>(journal.item)] +
         (journal.line > 0 ? ":" + std::to_string(journal.line) : "") + (calls.empty() ? "" : ", in " + calls);
}

/// Has processes work until all is done, a new one after each that dies. The highest status of all.
ExitStatus RunWorkers(const Work& work, WorkerStarter& starter) {
  Journal& journal = starter.SharedJournal();
  ProgressLine progress(work.items);
  ExitStatus worst = kAllWell;
  while (static_cast<std::size_t>(journal.item) < work.items.size()) {
    journal.BeginProcess();
    const ProcessEnd end = starter.Run([&] { progress.Show(journal); });
    EraseProgress(journal);
    if (end.wasInterrupted) {
      std::cerr << "ended from outside: " << DescribeWork(work, journal) << std::endl;
      EndInterrupted(end);
    }
    if (journal.isFinished) {
      worst = std::max(worst, static_cast<ExitStatus>(journal.status.load()));
      if (!end.wasStopped && end.status == journal.status) return worst;
      std::cerr << "the program died when all was done: " << end.reason << std::endl;
      return std::max(worst, kDied);
    }
    work.tellDeath(journal, DescribeDeath(journal, end));
    worst = std::max(worst, kDied);
    ++journal.item;
  }
  return worst;
}

}  // namespace

ExitStatus Supervise(const Work& work, bool isInProcess) {
  if (Journal* journal = InheritedJournal()) return RunAsWorker(work, *journal);
  std::optional<WorkerStarter> starter;
  const ExitStatus status = StatusOf([&] {
    if (isInProcess) return work.run(0);
    return RunWorkers(work, starter.emplace());
  });
  if (status == kLostOutput || !work.close) return status;
  return std::max(status, StatusOf([&] { return work.close(starter ? starter->SharedJournal() : ProcessJournal()); }));
}

}  // namespace qcalc
