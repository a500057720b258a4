#include <gmock/gmock.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "command_line.h"

namespace tarnwick::tests {

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

TEST(ViewVerb, NamesTheViewerThatDidNotStartAndWhyOnBothOutputs) {
  const ScratchFolder folder;
  std::filesystem::create_directories(folder.Path("game/models"));
  WriteText(folder.Path("game/models/box.mdl"), "");
  WriteText(folder.Path("sdk/hlmv.exe"), "");
  std::filesystem::permissions(folder.Path("sdk/hlmv.exe"), std::filesystem::perms::owner_read);
  const auto view = [&](const std::string& sdk) {
    return RunCommand({"view", "--json", "--sdk", folder.Path(sdk), "--game", folder.Path("game"), "box.mdl"});
  };
  for (const char* sdk : {"sdk", "none"}) {
    const CommandResult result = view(sdk);
    EXPECT_EQ(result.ExitCode, 1);
    const std::string told = "Error starting " + folder.Path(sdk);
    EXPECT_THAT(result.Err, AllOf(StartsWith(told), HasSubstr(": ")));
    EXPECT_THAT(nlohmann::json::parse(result.Out)["error"].get<std::string>(),
                AllOf(StartsWith(told), HasSubstr(": ")));
  }
}

}  // namespace

}  // namespace tarnwick::tests
