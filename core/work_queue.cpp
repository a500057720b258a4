#include "core/work_queue.h"

#include <utility>

namespace tarnwick::core {

WorkQueue::WorkQueue(int threads) {
  for (int i = 0; i < threads; ++i) m_threads.emplace_back([this] { RunUntilClosed(); });
}

WorkQueue::~WorkQueue() {
  Close();
  while (RunOne()) {
  }
  for (std::thread& thread : m_threads) thread.join();
}

uint64_t WorkQueue::Post(std::function<void()> task) {
  uint64_t number = 0;
  {
    const std::lock_guard lock(m_lock);
    number = m_posted++;
    m_tasks.emplace_hint(m_tasks.end(), number, std::move(task));
  }
  m_changed.notify_one();
  return number;
}

void WorkQueue::Withdraw(uint64_t number) {
  std::map<uint64_t, std::function<void()>>::node_type task;  // goes away when the lock is free
  const std::lock_guard lock(m_lock);
  task = m_tasks.extract(number);
}

bool WorkQueue::RunOne() {
  std::function<void()> task;
  {
    const std::lock_guard lock(m_lock);
    if (m_tasks.empty()) return false;
    task = std::move(m_tasks.begin()->second);
    m_tasks.erase(m_tasks.begin());
  }
  task();
  return true;
}

void WorkQueue::RunUntilClosed() {
  while (true) {
    {
      std::unique_lock lock(m_lock);
      m_changed.wait(lock, [this] { return m_closed || !m_tasks.empty(); });
      if (m_tasks.empty()) return;
    }
    RunOne();
  }
}

void WorkQueue::Close() {
  {
    const std::lock_guard lock(m_lock);
    m_closed = true;
  }
  m_changed.notify_all();
}

}  // namespace tarnwick::core
