#include "compiler/parallel.h"

#include <algorithm>
#include <atomic>
#include <thread>

#include "core/work_queue.h"

namespace tarnwick::compiler {

namespace {

constexpr unsigned MostThreads = 8;

size_t ThreadsOf(const CompileOptions& options) {
  if (options.Threads > 0) return static_cast<size_t>(options.Threads);
  // A reader of files that somebody else gave need not know more than one thread.
  if (options.Read) return 1;
  return std::clamp(std::thread::hardware_concurrency(), 1U, MostThreads);
}

}  // namespace

void ForEachInParallel(const CompileOptions& options, size_t count, const std::function<void(size_t)>& task) {
  const size_t threads = std::min(ThreadsOf(options), count);
  std::atomic<size_t> next = 0;
  const auto work = [&] {
    for (size_t i = next++; i < count && !options.Stop.stop_requested(); i = next++) task(i);
  };
  if (threads <= 1) return work();
  core::WorkQueue queue(static_cast<int>(threads) - 1);
  for (size_t i = 0; i < threads; ++i) queue.Post(work);
  queue.Close();
  queue.RunUntilClosed();
}

}  // namespace tarnwick::compiler
