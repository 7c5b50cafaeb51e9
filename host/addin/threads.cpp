#include "host/addin/threads.h"

#include <utility>

namespace qcalc {

void MainThread::Do(const std::function<void()>& work) {
  if (IsCurrent()) return work();
  Request request{&work, nullptr};
  std::unique_lock lock(mutex_);
  requests_.push_back(&request);
  changed_.notify_all();
  changed_.wait(lock, [&] { return request.isDone; });
  if (request.error) std::rethrow_exception(request.error);
}

void MainThread::Serve(std::unique_lock<std::mutex>& lock) {
  Request* request = requests_.front();
  requests_.pop_front();
  lock.unlock();
  try {
    (*request->work)();
  } catch (...) {
    request->error = std::current_exception();
  }
  lock.lock();
  request->isDone = true;
  changed_.notify_all();
}

void MainThread::RunOnThreads(int count, const std::function<void(int)>& work) {
  CalculationThreads(*this, count).Run(work);
}

CalculationThreads::CalculationThreads(MainThread& mainThread, int count) : mainThread_(mainThread) {
  for (int number = 1; number < count; ++number) threads_.emplace_back([this, number] { Work(number); });
}

CalculationThreads::~CalculationThreads() {
  {
    const std::lock_guard lock(mainThread_.mutex_);
    isEnding_ = true;
    mainThread_.changed_.notify_all();
  }
  for (std::thread& thread : threads_) thread.join();
}

void CalculationThreads::RunOne(int number) {
  try {
    (*work_)(number);
  } catch (...) {
    const std::lock_guard lock(mainThread_.mutex_);
    if (!error_) error_ = std::current_exception();
  }
}

void CalculationThreads::Work(int number) {
  std::uint64_t done = 0;
  std::unique_lock lock(mainThread_.mutex_);
  for (;;) {
    mainThread_.changed_.wait(lock, [&] { return isEnding_ || round_ != done; });
    if (round_ == done) return;
    done = round_;
    lock.unlock();
    RunOne(number);
    lock.lock();
    --running_;
    mainThread_.changed_.notify_all();
  }
}

void CalculationThreads::Run(const std::function<void(int)>& work) {
  {
    const std::lock_guard lock(mainThread_.mutex_);
    work_ = &work;
    running_ = static_cast<int>(threads_.size());
    ++round_;
    mainThread_.changed_.notify_all();
  }
  RunOne(0);
  std::unique_lock lock(mainThread_.mutex_);
  for (;;) {
    mainThread_.changed_.wait(lock, [&] { return running_ == 0 || !mainThread_.requests_.empty(); });
    if (mainThread_.requests_.empty()) break;
    mainThread_.Serve(lock);
  }
  if (error_) std::rethrow_exception(std::exchange(error_, nullptr));
}

}  // namespace qcalc
