#include "host/addin/threads.h"

#include <vector>

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
  std::exception_ptr error;
  const auto runOne = [&](int number) {
    try {
      work(number);
    } catch (...) {
      const std::lock_guard lock(mutex_);
      if (!error) error = std::current_exception();
    }
  };
  running_ = count - 1;
  std::vector<std::thread> threads;
  for (int number = 1; number < count; ++number)
    threads.emplace_back([&, number] {
      runOne(number);
      const std::lock_guard lock(mutex_);
      --running_;
      changed_.notify_all();
    });
  runOne(0);
  {
    std::unique_lock lock(mutex_);
    for (;;) {
      changed_.wait(lock, [&] { return running_ == 0 || !requests_.empty(); });
      if (requests_.empty()) break;
      Serve(lock);
    }
  }
  for (std::thread& thread : threads) thread.join();
  if (error) std::rethrow_exception(error);
}

}  // namespace qcalc
