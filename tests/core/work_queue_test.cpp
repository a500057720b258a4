#include "core/work_queue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <semaphore>
#include <vector>

namespace tarnwick::core {
namespace {

constexpr std::chrono::seconds Patience{20};  // a task that waits in vain fails, it does not hang

TEST(WorkQueue, ItsThreadsRunTasksSideBySideWhileTheOwnerWaits) {
  std::binary_semaphore first(0), second(0);
  std::counting_semaphore<2> done(0);
  std::atomic<int> met{0};
  WorkQueue queue(2);
  queue.Post([&] {
    first.release();
    met += second.try_acquire_for(Patience);
    done.release();
  });
  queue.Post([&] {
    second.release();
    met += first.try_acquire_for(Patience);
    done.release();
  });
  EXPECT_TRUE(done.try_acquire_for(Patience));
  EXPECT_TRUE(done.try_acquire_for(Patience));
  EXPECT_EQ(met, 2);
}

TEST(WorkQueue, RunsEveryTaskOnceThoughItsOwnerEndsIt) {
  std::vector<std::atomic<int>> runs(1000);
  {
    WorkQueue queue(4);
    for (std::atomic<int>& count : runs) queue.Post([&count] { ++count; });
  }
  EXPECT_EQ(std::count(runs.begin(), runs.end(), 1), 1000);
}

TEST(WorkQueue, WithoutThreadsTheCallersRunTheTasksInOrder) {
  WorkQueue queue;
  std::vector<int> order;
  for (int i = 0; i < 3; ++i) queue.Post([&order, i] { order.push_back(i); });
  EXPECT_TRUE(queue.RunOne());
  queue.Close();
  queue.RunUntilClosed();
  EXPECT_FALSE(queue.RunOne());
  EXPECT_EQ(order, (std::vector{0, 1, 2}));
}

TEST(WorkQueue, RunsNoTaskThatWasWithdrawn) {
  WorkQueue queue;
  std::vector<int> order;
  std::vector<uint64_t> numbers;
  for (int i = 0; i < 4; ++i) numbers.push_back(queue.Post([&order, i] { order.push_back(i); }));
  EXPECT_TRUE(queue.RunOne());
  for (const size_t i : {0U, 2U, 2U}) queue.Withdraw(numbers[i]);  // which has run, waits, and is out already
  while (queue.RunOne()) {
  }
  EXPECT_EQ(order, (std::vector{0, 1, 3}));
}

}  // namespace
}  // namespace tarnwick::core
