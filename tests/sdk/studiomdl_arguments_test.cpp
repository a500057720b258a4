#include "sdk/studiomdl_arguments.h"

#include <gmock/gmock.h>

#include "tools/studiomdl_command.h"

namespace {

using namespace tarnwick;
using namespace tarnwick::sdk;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::optional<StudiomdlRequest> Read(const std::vector<std::string>& arguments, std::string& reason) {
  return ReadStudiomdlArguments(arguments, reason);
}

TEST(StudiomdlArguments, TakesSwitchesOnBothSidesOfTheScript) {
  std::string reason;
  const auto request = Read(
      {"-NoP4", "-game", "/my game", "/qc/box.qc", "-quiet", "--printbones", "-definebone", "-h", "-version", "49"},
      reason);
  ASSERT_TRUE(request) << reason;
  EXPECT_EQ(request->Script, "/qc/box.qc");
  EXPECT_EQ(request->GameDirectory, "/my game");
  EXPECT_EQ(request->Version, 49);
  EXPECT_TRUE(request->Quiet && request->PrintBones && request->DefineBones && request->DumpHitboxes);
  EXPECT_THAT(request->PassedOver, IsEmpty());
}

TEST(StudiomdlArguments, KnowsEverySwitchThatTheProgramCanPass) {
  std::vector<std::string> arguments = {"box.qc"};
  for (const tools::StudiomdlOption& option : tools::StudiomdlOptions) {
    if (!option.Switch.empty()) arguments.emplace_back(option.Switch.substr(1));
  }
  arguments.emplace_back("-PERF");
  std::string reason;
  const auto request = Read(arguments, reason);
  ASSERT_TRUE(request) << reason;
  EXPECT_THAT(request->PassedOver, ElementsAre("-fullcollide", "-checklengths", "-perf", "-printgraph", "-f"))
      << "each once";
}

TEST(StudiomdlArguments, SaysWhatIsWrong) {
  const struct {
    std::vector<std::string> Arguments;
    const char* Reason;
  } cases[] = {
      {{}, "no script"},
      {{"-game"}, "-game must be followed"},
      {{"a.qc", "-game", ""}, "-game must be followed"},
      {{"a.qc", "-version", "47"}, "44, 48 or 49"},
      {{"a.qc", "-version", "48x"}, "44, 48 or 49"},
      {{"a.qc", "-version"}, "44, 48 or 49"},
      {{"a.qc", "b.qc"}, "one script at a time: a.qc and b.qc"},
      {{"a.qc", "-frobnicate"}, "unknown switch -frobnicate"},
      {{"a.qc", ""}, "an empty file name"},
  };
  for (const auto& one : cases) {
    std::string reason;
    EXPECT_FALSE(Read(one.Arguments, reason)) << one.Reason;
    EXPECT_THAT(reason, HasSubstr(one.Reason));
  }
}

}  // namespace
