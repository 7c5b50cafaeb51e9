// Calculation threads, of which the main thread is one, and the way from them back to the main thread.
#pragma once

#include <condition_variable>
#include <deque>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>

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
  int running_ = 0;
};

}  // namespace qcalc
