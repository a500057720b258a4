#include "core/work_queue.h"

#include <gtest/gtest.h>

#include <atomic>

namespace tarnwick::core {
namespace {

TEST(WorkQueue, RunsEveryTaskOnceOnManyThreads) {
  std::atomic<int> sum{0};
  {
    WorkQueue queue(4);
    for (int i = 1; i <= 1000; ++i) queue.Post([&sum, i] { sum += i; });
  }
  EXPECT_EQ(sum, 500'500);
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

}  // namespace
}  // namespace tarnwick::core
