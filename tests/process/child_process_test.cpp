#include "process/child_process.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <thread>

#include "process/run.h"
#include "support/scratch_folder.h"

namespace tarnwick::process {
namespace {

/// What the probe prints of arguments.
std::string Received(const std::vector<std::string>& arguments) {
  Command command{CONSOLE_PROBE, {"arguments"}};
  command.Arguments.insert(command.Arguments.end(), arguments.begin(), arguments.end());
  CapturedRun run = RunAndKeep(command, {}, {});
#ifdef _WIN32
  std::erase(run.Output, '\r');
#endif
  return run.Output;
}

TEST(ChildProcess, GetsEachArgumentToTheByte) {
  EXPECT_EQ(Received({"-game", "my game", "", "-f", R"(\a\b)", R"(C:\game\)", R"(x\\" y)", "a\tb"}),
            "[-game]\n[my game]\n[]\n[-f]\n[\\a\\b]\n[C:\\game\\]\n[x\\\\\" y]\n[a\tb]\n");
#ifndef _WIN32
  // Every byte that a name can hold; on Windows a console program gets its arguments in the system's code page.
  for (int c = 1; c < 256; ++c) {
    const std::string name = std::string("a") + static_cast<char>(c) + "b" + static_cast<char>(c);
    EXPECT_EQ(Received({name}), "[" + name + "]\n") << c;
  }
#endif
}

TEST(ChildProcess, StartsTheFileAtItsPathAndNothingElse) {
  const tests::ScratchFolder folder;
  const std::string program = folder.Path("my sdk/the probe.exe");
  std::filesystem::create_directories(folder.Path("my sdk"));
  std::filesystem::copy_file(CONSOLE_PROBE, program);
  std::filesystem::copy_file(CONSOLE_PROBE, folder.Path("my.exe"));
  std::filesystem::copy_file(CONSOLE_PROBE, folder.Path("my"));
  const CapturedRun run = RunAndKeep({program, {"self"}}, {}, {});
  EXPECT_THAT(run.Output, testing::HasSubstr("the probe.exe"));
  const CapturedRun missing = RunAndKeep({folder.Path("missing sdk/tool.exe"), {}}, {}, {});
  ASSERT_TRUE(missing.NotStarted);
  EXPECT_NE(missing.NotStarted->Message, "");
}

TEST(ChildProcess, InheritsNothingOfAnotherThatIsStartedAtTheSameTime) {
  // A child that held the end of its neighbour's output would keep that from ending.
  std::vector<std::jthread> threads;
  std::atomic<int> abandoned{0};
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (int k = 0; k < 10; ++k) {
        const CapturedRun slow = RunAndKeep({CONSOLE_PROBE, {"exit", "0"}}, {}, {});
        abandoned += slow.Outcome.OutputAbandoned ? 1 : 0;
      }
    });
  }
  RunOptions brief;
  brief.Deadline = std::chrono::milliseconds(500);
  RunAndKeep({CONSOLE_PROBE, {"wait", "60000"}}, {}, brief);
  threads.clear();
  EXPECT_EQ(abandoned, 0);
}

}  // namespace
}  // namespace tarnwick::process
