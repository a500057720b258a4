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

void WorkQueue::Post(std::function<void()> task) {
  {
    const std::lock_guard lock(m_lock);
    m_tasks.push_back(std::move(task));
  }
  m_changed.notify_one();
}

bool WorkQueue::RunOne() {
  std::function<void()> task;
  {
    const std::lock_guard lock(m_lock);
    if (m_tasks.empty()) return false;
    task = std::move(m_tasks.front());
    m_tasks.pop_front();
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
