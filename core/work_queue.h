#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

namespace tarnwick::core {

/// Tasks that any idle thread may take. A queue can have threads of its own; other threads help with `RunOne`.
/// Tasks must not throw and must not wait for tasks posted behind them.
class WorkQueue {
 public:
  /// A queue with `threads` threads of its own; with 0 the tasks are run by whoever calls `RunOne`.
  explicit WorkQueue(int threads = 0);
  /// Runs what is left, then ends the queue's threads.
  ~WorkQueue();
  WorkQueue(const WorkQueue&) = delete;
  WorkQueue& operator=(const WorkQueue&) = delete;

  /// Adds a task, and gives the number under which it waits.
  uint64_t Post(std::function<void()> task);
  /// Takes out a task that nobody need run any more, if it is still waiting.
  void Withdraw(uint64_t number);
  /// Runs the oldest waiting task on the calling thread; false if none was waiting.
  bool RunOne();
  /// Runs tasks on the calling thread, and waits for more, until `Close` was called and none is waiting.
  void RunUntilClosed();
  /// No further task will be posted.
  void Close();

 private:
  std::mutex m_lock;
  std::condition_variable m_changed;
  std::map<uint64_t, std::function<void()>> m_tasks;  // that wait, by their numbers
  uint64_t m_posted = 0;
  bool m_closed = false;
  std::vector<std::thread> m_threads;
};

}  // namespace tarnwick::core
