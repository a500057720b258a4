#pragma once

#include <cstddef>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace tarnwick::pages {

/// One thing that a job over several files tells its window.
template <typename Result>
struct JobEvent {
  enum class Kind {
    Started,   // file `Index` of `Count` is at hand; `Text` is its path
    Text,      // `Text` was added to the file's log
    Finished,  // the file is done; `Text` is its whole log, `What` what became of it
  };
  Kind Told = Kind::Text;
  std::string Text;
  size_t Index = 0;
  size_t Count = 0;
  Result What = {};
};

/// Passes a job's events from its thread to the window's, in their order.
template <typename Result>
class JobEvents {
 public:
  void Add(JobEvent<Result> event) {
    const std::lock_guard lock(m_mutex);
    m_events.push_back(std::move(event));
  }
  std::vector<JobEvent<Result>> Take() {
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_events, {});
  }

 private:
  std::mutex m_mutex;
  std::vector<JobEvent<Result>> m_events;
};

}  // namespace tarnwick::pages
