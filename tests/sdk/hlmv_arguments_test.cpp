#include "sdk/hlmv_arguments.h"

#include <gmock/gmock.h>

#include <sstream>

#include "support/scratch_folder.h"

namespace tarnwick::sdk {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

TEST(ReadHlmvArguments, FindsModelsAtTheirPathOrBelowTheGame) {
  const tests::ScratchFolder folder;
  tests::WriteText(folder.Path("mod/models/Props/crate.mdl"), "");
  tests::WriteText(folder.Path("lamp.mdl"), "");
  std::ostringstream err;
  const std::string game = folder.Path("mod");
  const std::vector<std::string> words = {
      "-game", game, game + "/models/Props/crate.mdl", "Props/CRATE.mdl", folder.Path("lamp.mdl"), "props/none.mdl"};
  const auto request = ReadHlmvArguments(words, err);
  ASSERT_TRUE(request.has_value());
  EXPECT_EQ(request->GameDirectory, game);
#ifdef _WIN32  // which opens it as it was typed
  const char* const found = "/models/Props/CRATE.mdl";
#else
  const char* const found = "/models/Props/crate.mdl";
#endif
  EXPECT_THAT(request->Models,
              ElementsAre(game + "/models/Props/crate.mdl", game + found, folder.Path("lamp.mdl"), "props/none.mdl"));
  EXPECT_EQ(err.str(), "");
}

TEST(ReadHlmvArguments, RefusesWhatItDoesNotKnow) {
  for (const auto& [words, reason] : {std::pair<std::vector<std::string>, const char*>{{"-game"}, "-game must be"},
                                      {{"-gmae", "/x"}, "unknown switch -gmae"},
                                      {{""}, "without a name"}}) {
    std::ostringstream err;
    EXPECT_FALSE(ReadHlmvArguments(words, err).has_value());
    EXPECT_THAT(err.str(), HasSubstr(reason));
  }
  std::ostringstream err;
  EXPECT_TRUE(ReadHlmvArguments(std::vector<std::string>{"-help"}, err)->WantsHelp);
}

}  // namespace
}  // namespace tarnwick::sdk
