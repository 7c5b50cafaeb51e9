// Calculation threads, of which the main thread is one, and the way from them back to the main thread.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "host/calculation/calculation_threads.h"

namespace qcalc {

/// Work that only the main thread may do, asked for by the others. The thread that makes the object is the main thread.
class MainThread {
 public:
  MainThread() : id_(std::this_thread::get_id()) {}

  bool IsCurrent() const { return std::this_thread::get_id() == id_; }

  /// Does `work` on the main thread and returns when it is done; what it throws is thrown here. On the main thread
  /// itself it is done at once. Other threads may ask only while the main thread is in RunOnThreads.
  void Do(const std::function<void()>& work);

  /// Runs `work` with the numbers 0 to `count` - 1, each on a thread of its own, 0 on this one, which is the main
  /// thread; serves what the others ask for; returns when all are done. What one of them throws is thrown here.
  void RunOnThreads(int count, const std::function<void(int)>& work);

 private:
  friend class CalculationThreads;
  struct Request {
    const std::function<void()>* work;
    std::exception_ptr error;
    bool isDone = false;
  };

  void Serve(std::unique_lock<std::mutex>& lock);

  const std::thread::id id_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Request*> requests_;
};

/// Calculation threads that stay, and keep what the add-in keeps for each thread, from one work to the next. Made, used
/// and ended on the main thread.
class CalculationThreads final : public ICalculationThreads {
 public:
  /// `count` threads, at least 1, the main thread among them; `mainThread` outlives this.
  CalculationThreads(MainThread& mainThread, int count);
  ~CalculationThreads() override;
  CalculationThreads(const CalculationThreads&) = delete;
  CalculationThreads& operator=(const CalculationThreads&) = delete;

  int Count() const override { return static_cast<int>(threads_.size()) + 1; }
  /// Serves what the others ask the main thread for.
  void Run(const std::function<void(int)>& work) override;

 private:
  void Work(int number);
  void RunOne(int number);

  MainThread& mainThread_;  // its mutex and its condition hold for what follows too
  std::vector<std::thread> threads_;
  const std::function<void(int)>* work_ = nullptr;
  std::exception_ptr error_;
  std::uint64_t round_ = 0;
  int running_ = 0;
  bool isEnding_ = false;
};

}  // namespace qcalc
